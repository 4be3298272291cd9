#pragma once

#include <string>
#include <string_view>

/// The one decoder of UTF-8. A byte that is not part of a valid character reads as a replacement character
/// (U+FFFD) of its own. Any thread.
namespace velloway {

/// Takes the first code point off a text that is not empty.
char32_t takeCodePoint(std::string_view& text);
/// Takes the last code point off a text that is not empty.
char32_t takeLastCodePoint(std::string_view& text);

/// The UTF-16 form of a UTF-8 text.
std::u16string utf16From(std::string_view text);

} // namespace velloway
