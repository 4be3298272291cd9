#pragma once

#include <string_view>
#include <vector>

/// Text in user-perceived characters (extended grapheme clusters). Views point into the text that was given.
/// Bytes that are not UTF-8 count as characters of their own. Any thread.
namespace velloway {

/// Empty when the text is.
std::string_view firstGrapheme(std::string_view text);
std::vector<std::string_view> graphemes(std::string_view text);
std::string_view withoutLastGrapheme(std::string_view text);

} // namespace velloway
