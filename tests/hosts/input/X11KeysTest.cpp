#include "XServer.h"
#include "desktop/WaitFor.h"
#include "hosts/linux/input/X11Input.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <xcb/xinput.h>
#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
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

// Whether a program has claimed a media key decides who gets it.

/// A program with a shortcut on one key, set in the way of newer programs.
class Shortcut {
public:
    explicit Shortcut(std::uint8_t keycode) {
        constexpr std::uint32_t anyModifier = XCB_INPUT_MODIFIER_MASK_ANY;
        constexpr std::uint32_t events = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
        const X11Reply<xcb_input_xi_passive_grab_device_reply_t> reply(xcb_input_xi_passive_grab_device_reply(
            connection_.get(),
            xcb_input_xi_passive_grab_device(
                connection_.get(), XCB_CURRENT_TIME, connection_.root(), XCB_NONE, keycode,
                XCB_INPUT_DEVICE_ALL_MASTER, 1, 1, XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC,
                XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER, &events, &anyModifier),
            nullptr));
        EXPECT_TRUE(reply && reply->num_modifiers == 0);
    }

    bool isPressed() {
        const X11Reply<xcb_generic_event_t> event(xcb_poll_for_event(connection_.get()));
        return event && (event->response_type & 0x7FU) == XCB_GE_GENERIC;
    }

private:
    X11Connection connection_;
};

class X11MediaKeys : public ::testing::Test {
protected:
    bool isUnclaimed() {
        return waitFor([&] {
            const std::lock_guard lock(mutex_);
            return done_ != nullptr;
        });
    }
    void answer(bool isDone) {
        const std::lock_guard lock(mutex_);
        std::exchange(done_, nullptr)(isDone);
    }

    XServer server_;
    std::mutex mutex_;
    std::vector<MediaKey> unclaimed_;
    InputNeeds::MediaKeyDone done_;
    std::unique_ptr<X11Input> input_ =
        std::make_unique<X11Input>(InputNeeds{.pressUnclaimed = [this](MediaKey key, auto done) {
            const std::lock_guard lock(mutex_);
            unclaimed_.push_back(key);
            done_ = std::move(done);
        }});
};

TEST_F(X11MediaKeys, AKeyThatNobodyHasClaimedIsNotPressedWhenSomethingElseTookIt) {
    input_->pressMediaKey(MediaKey::playPause);
    ASSERT_TRUE(isUnclaimed());
    XRecorder recorder;
    answer(true);
    input_->pressKey(Key::escape, {});
    EXPECT_TRUE(waitFor([&] {
        recorder.read();
        return recorder.events().size() >= 2;
    }));
    EXPECT_THAT(recorder.take(), ElementsAre("+Escape", "-Escape"));
    EXPECT_THAT(unclaimed_, ElementsAre(MediaKey::playPause));
}

TEST_F(X11MediaKeys, AKeyThatNothingTookGoesToTheProgramWithTheKeyboard) {
    input_->pressMediaKey(MediaKey::nextTrack);
    ASSERT_TRUE(isUnclaimed());
    XRecorder recorder;
    answer(false);
    EXPECT_TRUE(waitFor([&] {
        recorder.read();
        return recorder.events().size() >= 2;
    }));
    EXPECT_THAT(recorder.take(), ElementsAre("+XF86AudioNext", "-XF86AudioNext"));
}

TEST_F(X11MediaKeys, AKeyWithAShortcutIsPressedForIt) {
    const auto keycodes = server_.keycodesOf(XKB_KEY_XF86AudioPlay);
    ASSERT_FALSE(keycodes.empty());
    std::deque<Shortcut> shortcuts;
    for (const std::uint8_t each : keycodes) {
        shortcuts.emplace_back(each);
    }
    input_->pressMediaKey(MediaKey::playPause);
    EXPECT_TRUE(waitFor([&] {
        return std::any_of(shortcuts.begin(), shortcuts.end(), [](Shortcut& each) { return each.isPressed(); });
    }));
    EXPECT_THAT(unclaimed_, IsEmpty());
}

TEST_F(X11MediaKeys, LookingForAClaimClaimsNothing) {
    input_->pressMediaKey(MediaKey::mute);
    ASSERT_TRUE(isUnclaimed());
    for (const std::uint8_t each : server_.keycodesOf(XKB_KEY_XF86AudioMute)) {
        EXPECT_FALSE(server_.connection().isKeyGrabbed(each));
    }
}

TEST_F(X11MediaKeys, AnAnswerAfterTheEndPressesNothing) {
    input_->pressMediaKey(MediaKey::mute);
    ASSERT_TRUE(isUnclaimed());
    XRecorder recorder;
    input_.reset();
    answer(false);
    X11Input other;
    other.pressKey(Key::escape, {});
    EXPECT_TRUE(waitFor([&] {
        recorder.read();
        return recorder.events().size() >= 2;
    }));
    EXPECT_THAT(recorder.take(), ElementsAre("+Escape", "-Escape"));
}

TEST_F(X11Keys, AnEmptyTextTypesNothing) {
    input_.typeText("");
    input_.pressKey(Key::escape, {});
    EXPECT_THAT(received(2), ElementsAre("+Escape", "-Escape"));
}

} // namespace

} // namespace velloway::test
