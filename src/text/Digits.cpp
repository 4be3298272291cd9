#include "text/Digits.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <cstdint>

namespace velloway {

std::string digitsOnly(std::string_view text) {
    std::string digits;
    const auto size = static_cast<std::int64_t>(text.size());
    for (std::int64_t at = 0; at < size;) {
        const std::int64_t start = at;
        UChar32 codePoint = 0;
        U8_NEXT(text.data(), at, size, codePoint);
        if (codePoint >= 0 && u_charType(codePoint) == U_DECIMAL_DIGIT_NUMBER) {
            digits.append(text, static_cast<std::size_t>(start), static_cast<std::size_t>(at - start));
        }
    }
    return digits;
}

bool isNumberCharacter(std::string_view grapheme) {
    if (grapheme.empty()) {
        return false;
    }
    const auto size = static_cast<std::int64_t>(grapheme.size());
    std::int64_t at = 0;
    UChar32 codePoint = 0;
    U8_NEXT(grapheme.data(), at, size, codePoint);
    return codePoint >= 0 && u_getIntPropertyValue(codePoint, UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

} // namespace velloway
