#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace velloway {

/// What is left of `text` when everything but decimal digits is taken out. Digits of any script stay, as they
/// are.
std::string digitsOnly(std::string_view text);

/// The end of that, with at most `count` digits. Reads `text` from its end and no further than needed.
std::string lastDigits(std::string_view text, std::size_t count);

/// Of any script.
bool isDecimalDigit(char32_t codePoint);

/// Whether a user-perceived character is a number of any kind: a digit of any script, a fraction, a Roman or
/// circled number. Its first code point decides.
bool isNumberCharacter(std::string_view grapheme);

} // namespace velloway
