#include "XServer.h"
#include "desktop/WaitFor.h"
#include "hosts/linux/input/LinuxAccessibility.h"
#include "hosts/linux/input/LinuxInputEvents.h"
#include "hosts/linux/input/X11Input.h"
#include "remote/InputInjection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <xkbcommon/xkbcommon-keysyms.h>

#include <string>
#include <vector>

namespace velloway::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class X11Keys : public ::testing::Test {
protected:
    std::vector<std::string> received(std::size_t count) {
        waitFor([&] {
            recorder_.read();
            return recorder_.events().size() >= count;
        });
        return recorder_.take();
    }

    XServer server_;
    XRecorder recorder_;
    X11Input input_;
    LinuxInputEvents events_{input_};
    InputInjection injection_{events_};
};

TEST_F(X11Keys, SessionIsTrustedWithoutAQuestion) {
    LinuxAccessibility accessibility(input_);
    EXPECT_TRUE(accessibility.isTrusted());
    EXPECT_TRUE(accessibility.isTrustedWithPrompt());
}

TEST_F(X11Keys, EachVirtualKeyIsItsKey) {
    const std::pair<int, const char*> keys[] = {
        {36, "Return"},    {51, "BackSpace"}, {53, "Escape"}, {55, "Super_L"}, {58, "Alt_L"},
        {59, "Control_L"}, {123, "Left"},     {124, "Right"}, {125, "Down"},   {126, "Up"},
    };
    for (const auto& [key, name] : keys) {
        injection_.sendCGKey(static_cast<std::uint16_t>(key), {});
        EXPECT_THAT(received(2), ElementsAre("+" + std::string(name), "-" + std::string(name)));
    }
}

TEST_F(X11Keys, HoldsTheModifiersAroundTheKey) {
    const std::string_view all[] = {"shift", "option", "ctrl", "cmd"};
    injection_.sendCGKey(123, all);
    EXPECT_THAT(received(10), ElementsAre("+Super_L", "+Control_L", "+Alt_L", "+Shift_L", "+Left", "-Left",
                                          "-Shift_L", "-Alt_L", "-Control_L", "-Super_L"));
    EXPECT_FALSE(server_.isAnyKeyDown());
}

TEST_F(X11Keys, TheKeyArrivesWithTheModifierState) {
    const std::string_view modifiers[] = {"cmd", "shift"};
    injection_.sendCGKey(124, modifiers);
    waitFor([&] {
        recorder_.read();
        return recorder_.events().size() >= 6;
    });
    ASSERT_EQ(recorder_.events().size(), 6U);
    EXPECT_EQ(recorder_.events()[2].what, std::uint32_t{XKB_KEY_Right});
    EXPECT_EQ(recorder_.events()[2].modifiers, unsigned{XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_4});
    EXPECT_EQ(recorder_.events()[3].modifiers, unsigned{XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_4});
}

TEST_F(X11Keys, AModifierIsNotHeldAroundItself) {
    const std::string_view modifiers[] = {"cmd", "ctrl"};
    injection_.sendCGKey(55, modifiers);
    EXPECT_THAT(received(4), ElementsAre("+Control_L", "+Super_L", "-Super_L", "-Control_L"));
}

TEST_F(X11Keys, EachSystemKeyIsItsMediaKey) {
    const std::pair<int, const char*> keys[] = {
        {0, "XF86AudioRaiseVolume"},   {1, "XF86AudioLowerVolume"}, {2, "XF86MonBrightnessUp"},
        {3, "XF86MonBrightnessDown"},  {7, "XF86AudioMute"},        {16, "XF86AudioPlay"},
        {17, "XF86AudioNext"},         {18, "XF86AudioPrev"},       {21, "XF86KbdBrightnessUp"},
        {22, "XF86KbdBrightnessDown"},
    };
    for (const auto& [key, name] : keys) {
        injection_.sendSystemMediaKey(key);
        EXPECT_THAT(received(2), ElementsAre("+" + std::string(name), "-" + std::string(name)));
    }
}

TEST_F(X11Keys, AnUnknownSystemKeyCannotBeMade) {
    EXPECT_EQ(events_.makeSystemDefinedEvent(0xA00, 8, 99 << 16 | 0xA00, -1), nullptr);
    injection_.sendSystemMediaKey(99);
    injection_.sendSystemMediaKey(7);
    EXPECT_THAT(received(2), ElementsAre("+XF86AudioMute", "-XF86AudioMute"));
}

TEST_F(X11Keys, AMediaKeyThatTheKeyboardLacksIsBorrowed) {
    for (const std::uint8_t keycode : server_.keycodesOf(XKB_KEY_XF86KbdBrightnessUp)) {
        server_.clearKey(keycode);
    }
    ASSERT_FALSE(server_.hasKeysym(XKB_KEY_XF86KbdBrightnessUp));
    const auto without = server_.keymaps();
    injection_.sendSystemMediaKey(21);
    EXPECT_THAT(received(2), ElementsAre("+XF86KbdBrightnessUp", "-XF86KbdBrightnessUp"));
    EXPECT_TRUE(waitFor([&] { return server_.keymaps() == without; }));
}

TEST_F(X11Keys, AnEmptyTextTypesNothing) {
    injection_.sendUnicodeText("");
    injection_.sendCGKey(53, {});
    EXPECT_THAT(received(2), ElementsAre("+Escape", "-Escape"));
}

} // namespace

} // namespace velloway::test
