#include "text/Trim.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <cstddef>
#include <cstdint>

namespace velloway {

namespace {

bool isBlank(UChar32 codePoint) {
    return codePoint == '\t' || (codePoint >= 0 && u_charType(codePoint) == U_SPACE_SEPARATOR);
}

bool isBlankOrLineEnd(UChar32 codePoint) {
    constexpr UChar32 nextLine = 0x85;
    constexpr UChar32 lineSeparator = 0x2028;
    constexpr UChar32 paragraphSeparator = 0x2029;
    return isBlank(codePoint) || (codePoint >= '\n' && codePoint <= '\r') || codePoint == nextLine ||
           codePoint == lineSeparator || codePoint == paragraphSeparator;
}

struct Decoded {
    UChar32 codePoint;
    std::size_t size;
};

Decoded firstOf(std::string_view text) {
    std::int64_t at = 0;
    UChar32 codePoint = 0;
    U8_NEXT(text.data(), at, static_cast<std::int64_t>(text.size()), codePoint);
    return {codePoint, static_cast<std::size_t>(at)};
}

Decoded lastOf(std::string_view text) {
    constexpr std::size_t longest = 4;
    for (std::size_t size = 1; size <= longest && size <= text.size(); ++size) {
        const char lead = text[text.size() - size];
        if (!U8_IS_TRAIL(lead)) {
            const Decoded decoded = firstOf(text.substr(text.size() - size));
            return decoded.size == size ? decoded : Decoded{-1, 1};
        }
    }
    return {-1, 1};
}

template <class Predicate> std::string_view trim(std::string_view text, Predicate isCut) {
    while (!text.empty()) {
        const Decoded first = firstOf(text);
        if (!isCut(first.codePoint)) {
            break;
        }
        text.remove_prefix(first.size);
    }
    while (!text.empty()) {
        const Decoded last = lastOf(text);
        if (!isCut(last.codePoint)) {
            break;
        }
        text.remove_suffix(last.size);
    }
    return text;
}

} // namespace

std::string_view trimBlanks(std::string_view text) {
    return trim(text, isBlank);
}

std::string_view trimBlanksAndLineEnds(std::string_view text) {
    return trim(text, isBlankOrLineEnd);
}

} // namespace velloway
