#include "text/CodePoints.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace velloway {

namespace {

constexpr char32_t replacementCharacter = 0xFFFD;

} // namespace

char32_t takeCodePoint(std::string_view& text) {
    std::int64_t end = 0;
    UChar32 codePoint = 0;
    U8_NEXT(text.data(), end, static_cast<std::int64_t>(text.size()), codePoint);
    text.remove_prefix(codePoint < 0 ? 1 : static_cast<std::size_t>(end));
    return codePoint < 0 ? replacementCharacter : static_cast<char32_t>(codePoint);
}

char32_t takeLastCodePoint(std::string_view& text) {
    if (U8_IS_SINGLE(static_cast<std::uint8_t>(text.back()))) {
        const auto ascii = static_cast<char32_t>(text.back());
        text.remove_suffix(1);
        return ascii;
    }
    constexpr std::size_t longest = U8_MAX_LENGTH;
    const std::string_view end = text.substr(text.size() - std::min(text.size(), longest));
    auto start = static_cast<std::int32_t>(end.size());
    UChar32 codePoint = 0;
    U8_PREV(reinterpret_cast<const std::uint8_t*>(end.data()), 0, start, codePoint);
    text.remove_suffix(codePoint < 0 ? 1 : end.size() - static_cast<std::size_t>(start));
    return codePoint < 0 ? replacementCharacter : static_cast<char32_t>(codePoint);
}

std::u16string utf16From(std::string_view text) {
    std::u16string units;
    units.reserve(text.size());
    while (!text.empty()) {
        const char32_t codePoint = takeCodePoint(text);
        if (U_IS_BMP(codePoint)) {
            units.push_back(static_cast<char16_t>(codePoint));
        } else {
            units.push_back(static_cast<char16_t>(U16_LEAD(codePoint)));
            units.push_back(static_cast<char16_t>(U16_TRAIL(codePoint)));
        }
    }
    return units;
}

} // namespace velloway
