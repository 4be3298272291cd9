#include "text/Digits.h"

#include "text/CodePoints.h"

#include <unicode/uchar.h>

#include <algorithm>

namespace velloway {

bool isDecimalDigit(char32_t codePoint) {
    constexpr char32_t firstBeyondAscii = 0x660;
    return codePoint < firstBeyondAscii ? codePoint >= U'0' && codePoint <= U'9'
                                        : u_charType(static_cast<UChar32>(codePoint)) == U_DECIMAL_DIGIT_NUMBER;
}

std::string digitsOnly(std::string_view text) {
    std::string digits;
    // Every digit beyond ASCII begins with this byte or a higher one.
    constexpr unsigned char firstLead = 0xD9;
    const auto mayBegin = [](char c) {
        return (c >= '0' && c <= '9') || static_cast<unsigned char>(c) >= firstLead;
    };
    while (true) {
        const auto next = std::find_if(text.begin(), text.end(), mayBegin);
        text.remove_prefix(static_cast<std::size_t>(next - text.begin()));
        if (text.empty()) {
            return digits;
        }
        std::string_view rest = text;
        if (isDecimalDigit(takeCodePoint(rest))) {
            digits.append(text, 0, text.size() - rest.size());
        }
        text = rest;
    }
}

bool isNumberCharacter(std::string_view grapheme) {
    if (grapheme.empty()) {
        return false;
    }
    const auto codePoint = static_cast<UChar32>(takeCodePoint(grapheme));
    return u_getIntPropertyValue(codePoint, UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

} // namespace velloway
