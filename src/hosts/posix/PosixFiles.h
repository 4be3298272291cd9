#pragma once

#include "platform/Files.h"

namespace velloway {

/// The files as every POSIX system has them.
class PosixFiles : public Files {
public:
    std::unique_ptr<FileWriter> create(const std::filesystem::path& path, std::error_code& error) override;
    std::unique_ptr<FileReader> open(const std::filesystem::path& path, std::error_code& error) override;
};

} // namespace velloway
