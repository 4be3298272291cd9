#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

namespace velloway {

/// One open file of the operating system. Every failure is told in an error code; a path with a NUL character
/// in it never opens.
class FileHandle {
public:
    /// Makes an empty file, or empties the one that is there.
    static std::error_code createEmpty(const std::filesystem::path& path);

    static std::optional<FileHandle> openForWriting(const std::filesystem::path& path, std::error_code& error);
    /// A folder does not open.
    static std::optional<FileHandle> openForReading(const std::filesystem::path& path, std::error_code& error);

    FileHandle(FileHandle&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileHandle& operator=(FileHandle&& other) noexcept;
    /// Closes, if that has not been done.
    ~FileHandle();

    std::error_code seekToEnd();
    /// Writes all of `bytes`; what was written before a failure stays in the file.
    std::error_code write(std::string_view bytes);
    std::optional<std::int64_t> offset(std::error_code& error) const;
    std::optional<std::int64_t> size(std::error_code& error) const;

    /// Reads until `room` bytes have come or the file ends. 0 is the end.
    std::optional<std::size_t> read(char* to, std::size_t room, std::error_code& error);

    /// The handle is closed afterwards in any case.
    std::error_code close();

private:
    explicit FileHandle(int descriptor) : descriptor_(descriptor) {}

    static std::optional<FileHandle> open(const std::filesystem::path& path, int flags, std::error_code& error);

    int descriptor_;
};

} // namespace velloway
