#include "text/Trim.h"

#include "text/CodePoints.h"

#include <unicode/uchar.h>

namespace velloway {

namespace {

bool isBlank(char32_t codePoint) {
    return codePoint == U'\t' || u_charType(static_cast<UChar32>(codePoint)) == U_SPACE_SEPARATOR;
}

bool isBlankOrLineEnd(char32_t codePoint) {
    constexpr char32_t nextLine = 0x85;
    constexpr char32_t lineSeparator = 0x2028;
    constexpr char32_t paragraphSeparator = 0x2029;
    return isBlank(codePoint) || (codePoint >= U'\n' && codePoint <= U'\r') || codePoint == nextLine ||
           codePoint == lineSeparator || codePoint == paragraphSeparator;
}

template <class Predicate> std::string_view trim(std::string_view text, Predicate isCut) {
    for (std::string_view rest = text; !rest.empty() && isCut(takeCodePoint(rest));) {
        text = rest;
    }
    for (std::string_view rest = text; !rest.empty() && isCut(takeLastCodePoint(rest));) {
        text = rest;
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
