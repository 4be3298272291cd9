#include "hosts/linux/input/TextKeysyms.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <cstddef>

namespace velloway {

namespace {

/// 0 for characters that no key types.
std::uint32_t keysymOf(char32_t character) {
    constexpr std::uint32_t unicode = 0x01000000;
    switch (character) {
    case '\n':
    case '\r':
        return XKB_KEY_Return;
    case '\t':
        return XKB_KEY_Tab;
    case '\b':
        return XKB_KEY_BackSpace;
    default:
        break;
    }
    const bool isControl = character < 0x20 || (character >= 0x7F && character < 0xA0);
    if (isControl) {
        return 0;
    }
    return character <= 0xFF ? character : unicode | character;
}

} // namespace

std::vector<std::uint32_t> keysymsOf(std::u16string_view text) {
    std::vector<std::uint32_t> keysyms;
    for (std::size_t index = 0; index < text.size(); ++index) {
        char32_t character = text[index];
        const bool isHigh = character >= 0xD800 && character < 0xDC00;
        if (isHigh && index + 1 < text.size() && text[index + 1] >= 0xDC00 && text[index + 1] < 0xE000) {
            character = 0x10000 + ((character - 0xD800) << 10U) + (text[++index] - 0xDC00U);
        } else if (character >= 0xD800 && character < 0xE000) {
            character = 0xFFFD;
        } else if (character == '\n' && index > 0 && text[index - 1] == '\r') {
            continue;
        }
        if (const std::uint32_t keysym = keysymOf(character); keysym != 0) {
            keysyms.push_back(keysym);
        }
    }
    return keysyms;
}

} // namespace velloway
