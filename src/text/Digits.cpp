#include "text/Digits.h"

#include "text/CodePoints.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace velloway {

namespace {

/// Every digit beyond ASCII begins with this byte or a higher one.
constexpr unsigned char firstLead = 0xD9;
constexpr std::size_t blockBytes = 64;

/// Whether no digit begins in a block.
bool hasNoDigit(const char* block) {
    constexpr std::uint64_t everyByte = 0x0101010101010101;
    constexpr std::uint64_t highBits = 0x80 * everyByte;
    std::uint64_t found = 0;
    for (std::size_t at = 0; at < blockBytes; at += sizeof found) {
        std::uint64_t bytes = 0;
        std::memcpy(&bytes, block + at, sizeof bytes);
        const std::uint64_t low = bytes & ~highBits;
        // Each sum reaches the highest bit of a byte and no further: of one that is ten or more with the bits
        // of '0' turned over, and of one from the first lead on.
        const std::uint64_t otherThanDigits = bytes | ((low ^ '0' * everyByte) + (0x80 - 10) * everyByte);
        const std::uint64_t leads = bytes & (low + (0x100 - firstLead) * everyByte);
        found |= ~otherThanDigits | leads;
    }
    return (found & highBits) == 0;
}

/// How many bytes of a block belong to the character that began before it, which may be a digit.
std::size_t endOfCharacterBefore(std::string_view block) {
    constexpr std::size_t most = 3;
    std::size_t end = 0;
    while (end < most && (static_cast<unsigned char>(block[end]) & 0xC0U) == 0x80U) {
        ++end;
    }
    return end;
}

} // namespace

bool isDecimalDigit(char32_t codePoint) {
    constexpr char32_t firstBeyondAscii = 0x660;
    return codePoint < firstBeyondAscii ? codePoint >= U'0' && codePoint <= U'9'
                                        : u_charType(static_cast<UChar32>(codePoint)) == U_DECIMAL_DIGIT_NUMBER;
}

std::string digitsOnly(std::string_view text) {
    std::string digits;
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

std::string lastDigits(std::string_view text, std::size_t count) {
    std::string reversed;
    for (std::size_t found = 0; found < count && !text.empty();) {
        const std::string_view block = text.substr(text.size() - std::min(text.size(), blockBytes));
        if (block.size() == blockBytes && hasNoDigit(block.data())) {
            text.remove_suffix(blockBytes - endOfCharacterBefore(block));
            continue;
        }
        std::string_view rest = text;
        if (isDecimalDigit(takeLastCodePoint(rest))) {
            const std::string_view digit = text.substr(rest.size());
            reversed.append(digit.rbegin(), digit.rend());
            ++found;
        }
        text = rest;
    }
    std::reverse(reversed.begin(), reversed.end());
    return reversed;
}

bool isNumberCharacter(std::string_view grapheme) {
    if (grapheme.empty()) {
        return false;
    }
    const auto codePoint = static_cast<UChar32>(takeCodePoint(grapheme));
    return u_getIntPropertyValue(codePoint, UCHAR_NUMERIC_TYPE) != U_NT_NONE;
}

} // namespace velloway
