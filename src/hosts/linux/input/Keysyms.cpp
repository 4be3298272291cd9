#include "hosts/linux/input/Keysyms.h"

#include "text/CodePoints.h"

#include <xkbcommon/xkbcommon-keysyms.h>

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

std::uint32_t keysymOf(Key key) {
    switch (key) {
    case Key::returnKey:
        return XKB_KEY_Return;
    case Key::deleteBackward:
        return XKB_KEY_BackSpace;
    case Key::escape:
        return XKB_KEY_Escape;
    case Key::command:
        return XKB_KEY_Super_L;
    case Key::option:
        return XKB_KEY_Alt_L;
    case Key::control:
        return XKB_KEY_Control_L;
    case Key::left:
        return XKB_KEY_Left;
    case Key::right:
        return XKB_KEY_Right;
    case Key::up:
        return XKB_KEY_Up;
    case Key::down:
        return XKB_KEY_Down;
    }
    return XKB_KEY_NoSymbol;
}

std::uint32_t keysymOf(MediaKey key) {
    switch (key) {
    case MediaKey::soundUp:
        return XKB_KEY_XF86AudioRaiseVolume;
    case MediaKey::soundDown:
        return XKB_KEY_XF86AudioLowerVolume;
    case MediaKey::mute:
        return XKB_KEY_XF86AudioMute;
    case MediaKey::screenBrightnessUp:
        return XKB_KEY_XF86MonBrightnessUp;
    case MediaKey::screenBrightnessDown:
        return XKB_KEY_XF86MonBrightnessDown;
    case MediaKey::keyboardLightUp:
        return XKB_KEY_XF86KbdBrightnessUp;
    case MediaKey::keyboardLightDown:
        return XKB_KEY_XF86KbdBrightnessDown;
    case MediaKey::playPause:
        return XKB_KEY_XF86AudioPlay;
    case MediaKey::nextTrack:
        return XKB_KEY_XF86AudioNext;
    case MediaKey::previousTrack:
        return XKB_KEY_XF86AudioPrev;
    }
    return XKB_KEY_NoSymbol;
}

std::vector<std::uint32_t> keysymsOf(Key key, Modifiers modifiers) {
    std::vector<std::uint32_t> keysyms;
    const auto hold = [&](bool isHeld, std::uint32_t keysym) {
        if (isHeld && keysym != keysymOf(key)) {
            keysyms.push_back(keysym);
        }
    };
    hold(modifiers.command, XKB_KEY_Super_L);
    hold(modifiers.control, XKB_KEY_Control_L);
    hold(modifiers.option, XKB_KEY_Alt_L);
    hold(modifiers.shift, XKB_KEY_Shift_L);
    keysyms.push_back(keysymOf(key));
    return keysyms;
}

std::vector<std::uint32_t> keysymsOf(std::string_view text) {
    std::vector<std::uint32_t> keysyms;
    char32_t previous = 0;
    while (!text.empty()) {
        const char32_t character = takeCodePoint(text);
        const bool isRestOfLineBreak = character == '\n' && previous == '\r';
        previous = character;
        if (const std::uint32_t keysym = keysymOf(character); keysym != 0 && !isRestOfLineBreak) {
            keysyms.push_back(keysym);
        }
    }
    return keysyms;
}

} // namespace velloway
