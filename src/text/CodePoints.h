#pragma once

#include <string>
#include <string_view>

namespace velloway {

/// Takes the next code point off a UTF-8 text that is not empty. A byte that is not part of one is taken alone
/// and counts as a replacement character (U+FFFD).
char32_t takeCodePoint(std::string_view& text);

/// The UTF-16 form of a UTF-8 text, with replacement characters as above.
std::u16string utf16From(std::string_view text);

} // namespace velloway
