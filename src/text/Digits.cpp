#include "text/Digits.h"

#include "text/CodePoints.h"

#include <unicode/uchar.h>

namespace velloway {

std::string digitsOnly(std::string_view text) {
    std::string digits;
    while (!text.empty()) {
        std::string_view rest = text;
        if (u_charType(static_cast<UChar32>(takeCodePoint(rest))) == U_DECIMAL_DIGIT_NUMBER) {
            digits.append(text, 0, text.size() - rest.size());
        }
        text = rest;
    }
    return digits;
}

bool isNumberCharacter(std::string_view grapheme) {
    if (grapheme.empty()) {
        return false;
    }
    const auto codePoint = static_cast<UChar32>(takeCodePoint(grapheme));
    return u_getIntPropertyValue(codePoint, UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

} // namespace velloway
