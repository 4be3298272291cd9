#include "hosts/linux/input/VirtualKeymap.h"

#include <gtest/gtest.h>

#include <xkbcommon/xkbcommon-keysyms.h>
#include <xkbcommon/xkbcommon.h>

#include <memory>
#include <vector>

namespace velloway::test {
namespace {

using Keysyms = std::vector<std::uint32_t>;

/// The keymap as the programs of a compositor read it.
class ReadKeymap {
public:
    explicit ReadKeymap(const std::string& text)
        : context_(xkb_context_new(XKB_CONTEXT_NO_FLAGS), &xkb_context_unref),
          keymap_(xkb_keymap_new_from_string(context_.get(), text.c_str(), XKB_KEYMAP_FORMAT_TEXT_V1,
                                             XKB_KEYMAP_COMPILE_NO_FLAGS),
                  &xkb_keymap_unref) {}

    bool isValid() const { return keymap_ != nullptr; }
    /// By the number of the kernel.
    std::uint32_t keysymOf(std::uint32_t keycode) const {
        const xkb_keysym_t* keysyms = nullptr;
        const int count = xkb_keymap_key_get_syms_by_level(keymap_.get(), keycode + 8, 0, 0, &keysyms);
        return count == 1 ? keysyms[0] : XKB_KEY_NoSymbol;
    }
    /// The modifiers that are down while the key is held.
    std::uint32_t modifiersOf(std::uint32_t keycode) const {
        const std::unique_ptr<xkb_state, decltype(&xkb_state_unref)> state(xkb_state_new(keymap_.get()),
                                                                           &xkb_state_unref);
        xkb_state_update_key(state.get(), keycode + 8, XKB_KEY_DOWN);
        // The lower eight are those of X; the rest are names for them.
        return xkb_state_serialize_mods(state.get(), XKB_STATE_MODS_DEPRESSED) & 0xFFU;
    }

private:
    std::unique_ptr<xkb_context, decltype(&xkb_context_unref)> context_;
    std::unique_ptr<xkb_keymap, decltype(&xkb_keymap_unref)> keymap_;
};

Keysyms characters(std::uint32_t first, std::size_t count) {
    Keysyms keysyms;
    for (std::size_t index = 0; index < count; ++index) {
        keysyms.push_back(0x01000000 + first + static_cast<std::uint32_t>(index));
    }
    return keysyms;
}

constexpr std::uint32_t first = 0x4E00;
/// As many numbers as are left between the usual keys and the last that X can count.
constexpr std::size_t room = 113;

TEST(VirtualKeymapTest, KeysWithoutACharacterHaveTheirUsualNumbers) {
    const std::pair<std::uint32_t, std::uint32_t> usual[] = {
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
    VirtualKeymap keymap;
    EXPECT_EQ(keymap.keycodeOf(XKB_KEY_Escape), std::nullopt);
    const auto provided = keymap.provide({});
    EXPECT_EQ(provided.count, 0u);
    EXPECT_TRUE(provided.isExtended);
    EXPECT_FALSE(provided.isRestarted);
    const ReadKeymap read(keymap.text());
    ASSERT_TRUE(read.isValid());
    for (const auto& [keysym, keycode] : usual) {
        EXPECT_EQ(keymap.keycodeOf(keysym), keycode);
        EXPECT_EQ(read.keysymOf(keycode), keysym);
    }
    EXPECT_EQ(keymap.keycodeOf(XKB_KEY_a), std::nullopt);
}

TEST(VirtualKeymapTest, ModifiersAreThoseOfX) {
    VirtualKeymap keymap;
    keymap.provide({});
    const ReadKeymap read(keymap.text());
    const std::pair<std::uint32_t, std::uint32_t> modifiers[] = {{XKB_KEY_Shift_L, 1},
                                                                 {XKB_KEY_Control_L, 4},
                                                                 {XKB_KEY_Alt_L, 8},
                                                                 {XKB_KEY_Super_L, 64},
                                                                 {XKB_KEY_Return, 0}};
    for (const auto& [keysym, mask] : modifiers) {
        EXPECT_EQ(VirtualKeymap::modifierOf(keysym), mask);
        EXPECT_EQ(read.modifiersOf(*keymap.keycodeOf(keysym)), mask);
    }
}

TEST(VirtualKeymapTest, EachNewCharacterGetsTheNextNumberThatIsFree) {
    VirtualKeymap keymap;
    keymap.provide({});
    const Keysyms some{XKB_KEY_a, XKB_KEY_Escape, XKB_KEY_b, XKB_KEY_a};
    auto provided = keymap.provide(some);
    EXPECT_EQ(provided.count, 4u);
    EXPECT_TRUE(provided.isExtended);
    EXPECT_EQ(keymap.keycodeOf(XKB_KEY_a), 128u);
    EXPECT_EQ(keymap.keycodeOf(XKB_KEY_b), 129u);
    provided = keymap.provide(some);
    EXPECT_EQ(provided.count, 4u);
    EXPECT_FALSE(provided.isExtended);
    EXPECT_FALSE(provided.isRestarted);
    const ReadKeymap read(keymap.text());
    ASSERT_TRUE(read.isValid());
    EXPECT_EQ(read.keysymOf(128), std::uint32_t{XKB_KEY_a});
    EXPECT_EQ(read.keysymOf(129), std::uint32_t{XKB_KEY_b});
}

TEST(VirtualKeymapTest, FullItGivesKeysToAsManyAsThereIsRoomForAndThenBeginsAnew) {
    VirtualKeymap keymap;
    keymap.provide({});
    auto provided = keymap.provide(characters(first, room + 10));
    EXPECT_EQ(provided.count, room);
    EXPECT_FALSE(provided.isRestarted);
    EXPECT_EQ(keymap.keycodeOf(0x01000000 + first + room - 1), 247u);
    for (const std::uint32_t usual : {XKB_KEY_XF86AudioNext, XKB_KEY_XF86KbdBrightnessUp}) {
        EXPECT_NE(keymap.keycodeOf(usual), std::nullopt);
    }
    const ReadKeymap full(keymap.text());
    ASSERT_TRUE(full.isValid());
    for (const std::uint32_t keysym : characters(first, room)) {
        EXPECT_EQ(full.keysymOf(*keymap.keycodeOf(keysym)), keysym);
    }
    // What is there stays while it is enough.
    provided = keymap.provide(characters(first + room - 1, 2));
    EXPECT_EQ(provided.count, 1u);
    EXPECT_FALSE(provided.isExtended || provided.isRestarted);
    provided = keymap.provide(characters(first + room, 2));
    EXPECT_EQ(provided.count, 2u);
    EXPECT_TRUE(provided.isExtended && provided.isRestarted);
    EXPECT_EQ(keymap.keycodeOf(0x01000000 + first + room), 128u);
    EXPECT_EQ(keymap.keycodeOf(0x01000000 + first), std::nullopt);
    EXPECT_EQ(keymap.keycodeOf(XKB_KEY_Return), 28u);
}

} // namespace
} // namespace velloway::test
