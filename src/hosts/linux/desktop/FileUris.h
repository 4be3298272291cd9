#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace velloway {

/// Files as `file:` addresses and back, byte for byte, whatever the encoding of the names.
std::string fileUri(const std::filesystem::path& file);
/// Absent when the address is not that of a file on this computer.
std::optional<std::filesystem::path> pathOfFileUri(std::string_view uri);

} // namespace velloway
