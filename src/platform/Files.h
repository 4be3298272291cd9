#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>

namespace velloway {

/// A file that grows at its end. One thread at a time; destroying it closes it.
class FileWriter {
public:
    virtual ~FileWriter() = default;

    /// Writes all of `bytes` at the end that the file has by now, whoever made it longer, and returns its
    /// length afterwards. What was written before a failure stays in the file.
    virtual std::optional<std::int64_t> append(std::string_view bytes, std::error_code& error) = 0;
    /// The file is closed afterwards in any case.
    virtual std::error_code close() = 0;
};

/// A file opened for reading. One thread at a time; destroying it closes it.
class FileReader {
public:
    virtual ~FileReader() = default;

    /// In bytes, as it is at present.
    virtual std::optional<std::int64_t> size(std::error_code& error) = 0;
    /// Reads the bytes from `offset` on until `room` of them have come or the file ends. 0 is the end.
    virtual std::optional<std::size_t> readAt(std::int64_t offset, char* to, std::size_t room,
                                              std::error_code& error) = 0;
    /// The file is closed afterwards in any case.
    virtual std::error_code close() = 0;
};

/// The files of the computer. Any thread; every call may wait for the storage, and none waits for another
/// program. A path with a NUL character in it never opens.
class Files {
public:
    virtual ~Files() = default;

    /// Makes an empty file, or empties the one that is there. Null on failure.
    virtual std::unique_ptr<FileWriter> create(const std::filesystem::path& path, std::error_code& error) = 0;
    /// Null on failure. A folder does not open.
    virtual std::unique_ptr<FileReader> open(const std::filesystem::path& path, std::error_code& error) = 0;
};

} // namespace velloway
