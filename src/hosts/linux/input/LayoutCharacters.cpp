#include "hosts/linux/input/LayoutCharacters.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <unordered_set>

#include <xcb/xcb.h>
#include <xkbcommon/xkbcommon.h>

namespace velloway {

namespace {

constexpr std::uint32_t lastAscii = 0x7e;

/// Return and the like have no character, or one that every keyboard has.
bool isBeyondAscii(std::uint32_t keysym) {
    return xkb_keysym_to_utf32(keysym) > lastAscii;
}

/// Of every key, in all positions that the core protocol shows; empty when there is no server.
std::unordered_set<std::uint32_t> charactersOfLayout() {
    const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(xcb_connect(nullptr, nullptr),
                                                                                  &xcb_disconnect);
    if (xcb_connection_has_error(connection.get()) != 0) {
        return {};
    }
    const xcb_setup_t* setup = xcb_get_setup(connection.get());
    const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto cookie = xcb_get_keyboard_mapping(connection.get(), setup->min_keycode, count);
    const std::unique_ptr<xcb_get_keyboard_mapping_reply_t, decltype(&std::free)> reply(
        xcb_get_keyboard_mapping_reply(connection.get(), cookie, nullptr), &std::free);
    std::unordered_set<std::uint32_t> characters;
    if (reply) {
        const xcb_keysym_t* keysyms = xcb_get_keyboard_mapping_keysyms(reply.get());
        std::for_each(keysyms, keysyms + xcb_get_keyboard_mapping_keysyms_length(reply.get()),
                      [&](xcb_keysym_t each) { characters.insert(xkb_keysym_to_utf32(each)); });
    }
    return characters;
}

} // namespace

std::string charactersWithoutKey(std::span<const std::uint32_t> keysyms) {
    if (std::none_of(keysyms.begin(), keysyms.end(), isBeyondAscii)) {
        return {};
    }
    const auto present = charactersOfLayout();
    std::string missing;
    for (const std::uint32_t keysym : keysyms) {
        if (!present.empty() && isBeyondAscii(keysym) && !present.contains(xkb_keysym_to_utf32(keysym))) {
            std::array<char, 8> character{};
            xkb_keysym_to_utf8(keysym, character.data(), character.size());
            missing += character.data();
        }
    }
    return missing;
}

} // namespace velloway
