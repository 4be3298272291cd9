#pragma once

#include <cstdint>
#include <string>

namespace velloway {

/// The size of a file in decimal units, with no decimals for KB, up to one for MB and up to two above:
/// "Zero KB", "1 byte", "12 bytes", "2 KB", "1.2 MB". `locale` decides the decimal separator.
std::string byteCountText(std::int64_t bytes, const std::string& locale);

} // namespace velloway
