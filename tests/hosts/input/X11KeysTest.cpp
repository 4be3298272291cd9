#include "XServer.h"
#include "desktop/WaitFor.h"
#include "hosts/linux/input/X11Input.h"

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
};

TEST_F(X11Keys, SessionIsTrustedWithoutAQuestion) {
    EXPECT_TRUE(input_.isTrusted());
    EXPECT_TRUE(input_.isTrustedWithPrompt());
}

TEST_F(X11Keys, EachKeyIsTheKeyOfTheDesktop) {
    const std::pair<Key, const char*> keys[] = {
        {Key::returnKey, "Return"}, {Key::deleteBackward, "BackSpace"},
        {Key::escape, "Escape"},    {Key::command, "Super_L"},
        {Key::option, "Alt_L"},     {Key::control, "Control_L"},
        {Key::left, "Left"},        {Key::right, "Right"},
        {Key::down, "Down"},        {Key::up, "Up"},
    };
    for (const auto& [key, name] : keys) {
        input_.pressKey(key, {});
        EXPECT_THAT(received(2), ElementsAre("+" + std::string(name), "-" + std::string(name)));
    }
}

TEST_F(X11Keys, HoldsTheModifiersAroundTheKey) {
    input_.pressKey(Key::left, {.command = true, .control = true, .option = true, .shift = true});
    EXPECT_THAT(received(10), ElementsAre("+Super_L", "+Control_L", "+Alt_L", "+Shift_L", "+Left", "-Left",
                                          "-Shift_L", "-Alt_L", "-Control_L", "-Super_L"));
    EXPECT_FALSE(server_.isAnyKeyDown());
}

TEST_F(X11Keys, TheKeyArrivesWithTheModifierState) {
    input_.pressKey(Key::right, {.command = true, .shift = true});
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
    input_.pressKey(Key::command, {.command = true, .control = true});
    EXPECT_THAT(received(4), ElementsAre("+Control_L", "+Super_L", "-Super_L", "-Control_L"));
}

TEST_F(X11Keys, EachMediaKeyIsTheOneOfTheDesktop) {
    const std::pair<MediaKey, const char*> keys[] = {
        {MediaKey::soundUp, "XF86AudioRaiseVolume"},
        {MediaKey::soundDown, "XF86AudioLowerVolume"},
        {MediaKey::mute, "XF86AudioMute"},
        {MediaKey::screenBrightnessUp, "XF86MonBrightnessUp"},
        {MediaKey::screenBrightnessDown, "XF86MonBrightnessDown"},
        {MediaKey::keyboardLightUp, "XF86KbdBrightnessUp"},
        {MediaKey::keyboardLightDown, "XF86KbdBrightnessDown"},
        {MediaKey::playPause, "XF86AudioPlay"},
        {MediaKey::nextTrack, "XF86AudioNext"},
        {MediaKey::previousTrack, "XF86AudioPrev"},
    };
    for (const auto& [key, name] : keys) {
        input_.pressMediaKey(key);
        EXPECT_THAT(received(2), ElementsAre("+" + std::string(name), "-" + std::string(name)));
    }
}

TEST_F(X11Keys, AMediaKeyThatTheKeyboardLacksIsBorrowed) {
    for (const std::uint8_t keycode : server_.keycodesOf(XKB_KEY_XF86KbdBrightnessUp)) {
        server_.clearKey(keycode);
    }
    ASSERT_FALSE(server_.hasKeysym(XKB_KEY_XF86KbdBrightnessUp));
    const auto without = server_.keymaps();
    input_.pressMediaKey(MediaKey::keyboardLightUp);
    EXPECT_THAT(received(2), ElementsAre("+XF86KbdBrightnessUp", "-XF86KbdBrightnessUp"));
    EXPECT_TRUE(waitFor([&] { return server_.keymaps() == without; }));
}

TEST_F(X11Keys, AnEmptyTextTypesNothing) {
    input_.typeText("");
    input_.pressKey(Key::escape, {});
    EXPECT_THAT(received(2), ElementsAre("+Escape", "-Escape"));
}

} // namespace

} // namespace velloway::test
