#include "text/CodePoints.h"

#include <cstddef>

namespace velloway {

char32_t takeCodePoint(std::string_view& text) {
    const auto byteAt = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned char first = byteAt(0);
    std::size_t length = 1;
    char32_t codePoint = first;
    char32_t smallest = 0;
    if (first >= 0xF0 && first < 0xF8) {
        length = 4;
        codePoint = first & 0x07U;
        smallest = 0x10000;
    } else if (first >= 0xE0) {
        length = 3;
        codePoint = first & 0x0FU;
        smallest = 0x800;
    } else if (first >= 0xC0) {
        length = 2;
        codePoint = first & 0x1FU;
        smallest = 0x80;
    }
    bool isValid = first < 0x80 || (first >= 0xC0 && first < 0xF8 && length <= text.size());
    for (std::size_t index = 1; isValid && index < length; ++index) {
        isValid = (byteAt(index) & 0xC0U) == 0x80U;
        codePoint = codePoint << 6U | (byteAt(index) & 0x3FU);
    }
    const bool isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    if (!isValid || codePoint < smallest || codePoint > 0x10FFFF || isSurrogate) {
        text.remove_prefix(1);
        return 0xFFFD;
    }
    text.remove_prefix(length);
    return codePoint;
}

std::u16string utf16From(std::string_view text) {
    std::u16string units;
    units.reserve(text.size());
    while (!text.empty()) {
        const char32_t codePoint = takeCodePoint(text);
        if (codePoint < 0x10000) {
            units.push_back(static_cast<char16_t>(codePoint));
        } else {
            const char32_t offset = codePoint - 0x10000;
            units.push_back(static_cast<char16_t>(0xD800 + (offset >> 10U)));
            units.push_back(static_cast<char16_t>(0xDC00 + (offset & 0x3FFU)));
        }
    }
    return units;
}

} // namespace velloway
