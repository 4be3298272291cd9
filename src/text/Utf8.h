#pragma once

#include <string>
#include <string_view>

namespace velloway {

/// Whether `bytes` are UTF-8 throughout.
bool isUtf8(std::string_view bytes);

/// The same text with a replacement character (U+FFFD) in place of whatever is not UTF-8.
std::string repairedUtf8(std::string_view bytes);

} // namespace velloway
