#include "text/Case.h"

#include <unicode/bytestream.h>
#include <unicode/casemap.h>
#include <unicode/stringpiece.h>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

namespace velloway {

namespace {

using Mapping = void (*)(const char* locale, std::uint32_t options, icu::StringPiece source,
                         icu::ByteSink& sink, icu::Edits* edits, UErrorCode& error);

constexpr std::uint64_t everyByte = 0x0101010101010101;
constexpr std::uint64_t highBits = 0x80 * everyByte;

std::uint64_t eightBytes(const char* from) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, from, sizeof bytes);
    return bytes;
}

/// Turns the letters of one case, whose first is `first`, into those of the other, eight at a time.
void flipCase(std::string& asciiText, char first) {
    const std::uint64_t from = static_cast<unsigned char>(first);
    const std::uint64_t toFirst = (0x80 - from) * everyByte;
    const std::uint64_t toEnd = (0x80 - from - 26) * everyByte;
    std::size_t at = 0;
    for (; at + 8 <= asciiText.size(); at += 8) {
        std::uint64_t bytes = eightBytes(asciiText.data() + at);
        bytes ^= ((bytes + toFirst) & ~(bytes + toEnd) & highBits) >> 2U;
        std::memcpy(asciiText.data() + at, &bytes, sizeof bytes);
    }
    for (; at < asciiText.size(); ++at) {
        const char c = asciiText[at];
        asciiText[at] = c >= first && c < first + 26 ? static_cast<char>(c ^ 0x20) : c;
    }
}

constexpr std::size_t planeSize = 0x10000;

/// The characters of the first plane that are not lower-case already.
const std::bitset<planeSize>& notLowerCase() {
    static const std::bitset<planeSize> characters = [] {
        std::bitset<planeSize> changed;
        for (std::size_t c = 0; c < planeSize; ++c) {
            changed[c] = u_tolower(static_cast<UChar32>(c)) != static_cast<UChar32>(c);
        }
        return changed;
    }();
    return characters;
}

/// Whether a text is its own lower-case form. Many times as fast as the full mapping.
bool isLowerCase(std::string_view text) {
    const std::bitset<planeSize>& changed = notLowerCase();
    for (std::size_t at = 0; at < text.size();) {
        UChar32 c = 0;
        U8_NEXT(text.data(), at, text.size(), c);
        if (c < 0 ||
            (c < static_cast<UChar32>(planeSize) ? changed[static_cast<std::size_t>(c)] : u_tolower(c) != c)) {
            return false;
        }
    }
    return true;
}

std::string mapped(std::string_view text, char (*ascii)(char), Mapping map) {
    constexpr auto longest = static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max());
    std::string out;
    if (isAscii(text)) {
        out = text;
        flipCase(out, ascii('z') == 'Z' ? 'a' : 'A');
        return out;
    }
    if (text.size() > longest) {
        out.resize(text.size());
        std::transform(text.begin(), text.end(), out.begin(), ascii);
        return out;
    }
    out.reserve(text.size());
    icu::StringByteSink<std::string> sink(&out);
    UErrorCode error = U_ZERO_ERROR;
    map("", 0, icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())), sink, nullptr, error);
    return U_SUCCESS(error) ? out : std::string(text);
}

} // namespace

bool isAscii(std::string_view text) {
    constexpr std::size_t block = 64;
    std::size_t at = 0;
    for (; at + block <= text.size(); at += block) {
        std::uint64_t bytes = 0;
        for (std::size_t i = at; i < at + block; i += 8) {
            bytes |= eightBytes(text.data() + i);
        }
        if ((bytes & highBits) != 0) {
            return false;
        }
    }
    return std::all_of(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

std::string upperCased(std::string_view text) {
    return mapped(text, upperAscii, &icu::CaseMap::utf8ToUpper);
}

std::string lowerCased(std::string_view text) {
    return !isAscii(text) && isLowerCase(text) ? std::string(text)
                                               : mapped(text, lowerAscii, &icu::CaseMap::utf8ToLower);
}

} // namespace velloway
