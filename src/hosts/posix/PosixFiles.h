#pragma once

#include "platform/Files.h"

#include <cstddef>
#include <filesystem>
#include <memory>
#include <system_error>

namespace velloway {

/// The files as every POSIX system has them.
///
/// A phone can begin any number of files and finish none, while a process has about a thousand descriptors. So
/// only the files that were written last keep theirs; another one is opened again when it is written next,
/// which fails when somebody has moved or replaced it meanwhile.
class PosixFiles : public Files {
public:
    static constexpr std::size_t mostOpenWriters = 64;

    PosixFiles();
    ~PosixFiles() override;

    std::unique_ptr<FileWriter> create(const std::filesystem::path& path, std::error_code& error) override;
    std::unique_ptr<FileReader> open(const std::filesystem::path& path, std::error_code& error) override;

private:
    class OpenWriters;
    class Writer;

    /// Writers may outlive this object.
    std::shared_ptr<OpenWriters> openWriters_;
};

} // namespace velloway
