#include "hosts/linux/input/VirtualKeymap.h"

#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <array>
#include <iterator>

namespace velloway {

namespace {

struct Key {
    std::uint32_t keysym;
    std::uint32_t keycode;
};

/// Some programs go by the number of a key that types no character, so these have the usual ones.
constexpr Key usualKeys[] = {
    {XKB_KEY_Escape, 1},
    {XKB_KEY_BackSpace, 14},
    {XKB_KEY_Tab, 15},
    {XKB_KEY_Return, 28},
    {XKB_KEY_Control_L, 29},
    {XKB_KEY_Shift_L, 42},
    {XKB_KEY_Alt_L, 56},
    {XKB_KEY_Up, 103},
    {XKB_KEY_Left, 105},
    {XKB_KEY_Right, 106},
    {XKB_KEY_Down, 108},
    {XKB_KEY_XF86AudioMute, 113},
    {XKB_KEY_XF86AudioLowerVolume, 114},
    {XKB_KEY_XF86AudioRaiseVolume, 115},
    {XKB_KEY_Super_L, 125},
    {XKB_KEY_XF86AudioNext, 163},
    {XKB_KEY_XF86AudioPlay, 164},
    {XKB_KEY_XF86AudioPrev, 165},
    {XKB_KEY_XF86MonBrightnessDown, 224},
    {XKB_KEY_XF86MonBrightnessUp, 225},
    {XKB_KEY_XF86KbdBrightnessDown, 229},
    {XKB_KEY_XF86KbdBrightnessUp, 230},
};

struct Modifier {
    std::uint32_t keysym;
    std::uint32_t mask;
    const char* name;
};

constexpr Modifier modifiers[] = {
    {XKB_KEY_Shift_L, 1U << 0U, "Shift"},
    {XKB_KEY_Control_L, 1U << 2U, "Control"},
    {XKB_KEY_Alt_L, 1U << 3U, "Mod1"},
    {XKB_KEY_Super_L, 1U << 6U, "Mod4"},
};

// Characters have the numbers between the keys of a usual keyboard and the end of what X can count.
constexpr std::uint32_t firstCharacter = 128;
constexpr std::uint32_t lastCharacter = 247;
/// XKB counts the keys of the kernel from here.
constexpr std::uint32_t kernelOffset = 8;

bool isUsual(std::uint32_t keycode) {
    return std::any_of(std::begin(usualKeys), std::end(usualKeys),
                       [=](const Key& key) { return key.keycode == keycode; });
}

std::string nameOf(std::uint32_t keysym) {
    std::array<char, 64> name{};
    return xkb_keysym_get_name(keysym, name.data(), name.size()) > 0 ? name.data() : "NoSymbol";
}

std::string keyName(std::uint32_t keycode) {
    return "<K" + std::to_string(keycode) + ">";
}

} // namespace

VirtualKeymap::Provided VirtualKeymap::provide(std::span<const std::uint32_t> keysyms) {
    Provided provided;
    if (keycodes_.empty()) {
        for (const Key& key : usualKeys) {
            keycodes_.emplace(key.keysym, key.keycode);
        }
        next_ = firstCharacter;
        provided.isExtended = true;
    }
    for (const std::uint32_t keysym : keysyms) {
        if (!keycodes_.contains(keysym)) {
            if (!add(keysym)) {
                break;
            }
            provided.isExtended = true;
        }
        ++provided.count;
    }
    if (provided.count == 0 && !keysyms.empty()) {
        keycodes_.clear();
        provided = provide(keysyms);
        provided.isRestarted = true;
    }
    return provided;
}

/// False when there is no room.
bool VirtualKeymap::add(std::uint32_t keysym) {
    while (next_ <= lastCharacter && isUsual(next_)) {
        ++next_;
    }
    if (next_ > lastCharacter) {
        return false;
    }
    keycodes_.emplace(keysym, next_++);
    return true;
}

std::optional<std::uint32_t> VirtualKeymap::keycodeOf(std::uint32_t keysym) const {
    const auto found = keycodes_.find(keysym);
    return found != keycodes_.end() ? std::optional(found->second) : std::nullopt;
}

std::uint32_t VirtualKeymap::modifierOf(std::uint32_t keysym) {
    const auto* found = std::find_if(std::begin(modifiers), std::end(modifiers),
                                     [=](const Modifier& each) { return each.keysym == keysym; });
    return found != std::end(modifiers) ? found->mask : 0;
}

std::string VirtualKeymap::text() const {
    std::string names;
    std::string symbols;
    for (const auto& [keysym, keycode] : keycodes_) {
        names += keyName(keycode) + " = " + std::to_string(keycode + kernelOffset) + ";\n";
        symbols += "key " + keyName(keycode) + " { [ " + nameOf(keysym) + " ] };\n";
    }
    for (const Modifier& modifier : modifiers) {
        if (const auto keycode = keycodeOf(modifier.keysym)) {
            symbols += std::string("modifier_map ") + modifier.name + " { " + keyName(*keycode) + " };\n";
        }
    }
    return "xkb_keymap {\nxkb_keycodes \"velloway\" {\nminimum = 8;\nmaximum = 255;\n" + names +
           "};\nxkb_types \"velloway\" { include \"complete\" };\n"
           "xkb_compatibility \"velloway\" { include \"complete\" };\n"
           "xkb_symbols \"velloway\" {\n" +
           symbols + "};\n};\n";
}

} // namespace velloway
