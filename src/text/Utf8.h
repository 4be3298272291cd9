#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace velloway {

/// Whether `bytes` are UTF-8 throughout.
bool isUtf8(std::string_view bytes);

/// The same text with a replacement character (U+FFFD) in place of whatever is not UTF-8.
std::string repairedUtf8(std::string_view bytes);

/// The first `bytes` of UTF-8 text, less those of a character that would be split.
std::string_view head(std::string_view text, std::size_t bytes);
/// The same of the last ones.
std::string_view tail(std::string_view text, std::size_t bytes);

} // namespace velloway
