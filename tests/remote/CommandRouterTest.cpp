#include "remote/CommandRouter.h"

#include "fakes/FakeDesktop.h"
#include "fakes/FakeDispatchQueue.h"
#include "fakes/FakeInput.h"
#include "fakes/FakeLog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace velloway::test {

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Rig {
    FakeDispatchQueue main;
    FakeInputEvents input;
    FakeScripts scripts;
    FakeAccessibility accessibility;
    FakeLog log;
    CommandRouter router{main, input, scripts, accessibility, log};

    void handle(std::string_view command, std::optional<std::string_view> type = {}) {
        router.handle({.command = command, .type = type});
    }

    bool didNothing() const { return input.posted.empty() && scripts.scripts.empty() && main.pending() == 0; }
};

std::string received(std::string_view command, std::string_view type) {
    return "[WebSocketServer] Command received: " + std::string(command) + " [Type: " + std::string(type) + "]";
}
std::string denied(std::string_view command) {
    return "[WebSocketServer] Error: Command '" + std::string(command) +
           "' failed. Accessibility permissions are missing.";
}

void expectKey(const FakeInputEvents& input, Key key, Modifiers modifiers = {}) {
    EXPECT_THAT(input.posted, ElementsAre(Input(PressedKey{key, modifiers})));
}

void expectMediaKey(const FakeInputEvents& input, MediaKey key) {
    EXPECT_THAT(input.posted, ElementsAre(Input(key)));
}

// The tables, written out once more by hand: what the phone may rely on.

struct KeyCase {
    const char* command;
    Key key;
    friend void PrintTo(const KeyCase& value, std::ostream* out) { *out << value.command; }
};
constexpr KeyCase keyCommands[] = {
    {"key_escape", Key::escape},
    {"key_right", Key::right},
    {"key_left", Key::left},
    {"key_up", Key::up},
    {"key_down", Key::down},
    {"key_return", Key::returnKey},
    {"key_delete", Key::deleteBackward},
    {"key_control", Key::control},
    {"key_option", Key::option},
    {"key_command", Key::command},
    {"next", Key::right},
    {"slide_next", Key::right},
    {"seek_forward", Key::right},
    {"prev", Key::left},
    {"presentation_next", Key::right},
    {"slide_prev", Key::left},
    {"seek_backward", Key::left},
    {"presentation_prev", Key::left},
};

struct MediaKeyCase {
    const char* command;
    MediaKey key;
    friend void PrintTo(const MediaKeyCase& value, std::ostream* out) { *out << value.command; }
};
constexpr MediaKeyCase mediaKeyCommands[] = {
    {"mute_mac", MediaKey::mute},
    {"unmute_mac", MediaKey::mute},
    {"brightness_up", MediaKey::keyboardLightUp},
    {"brightness_down", MediaKey::keyboardLightDown},
    {"screen_brightness_up", MediaKey::screenBrightnessUp},
    {"screen_brightness_down", MediaKey::screenBrightnessDown},
};
constexpr MediaKeyCase mediaCommands[] = {
    {"play_pause", MediaKey::playPause}, {"next", MediaKey::nextTrack},     {"prev", MediaKey::previousTrack},
    {"vol_up", MediaKey::soundUp},       {"vol_down", MediaKey::soundDown},
};

struct ScriptCase {
    const char* command;
    bool isGuarded;
    SystemScript::Action action;
    friend void PrintTo(const ScriptCase& value, std::ostream* out) { *out << value.command; }
};
constexpr ScriptCase scriptCommands[] = {
    {"vol_up", false, SystemScript::Action::volumeUp},
    {"vol_down", false, SystemScript::Action::volumeDown},
    {"empty_trash", false, SystemScript::Action::emptyTrash},
    {"lock_mac", true, SystemScript::Action::lockScreen},
    {"sleep_mac", true, SystemScript::Action::sleep},
};

std::string nameOf(std::string_view command) {
    return std::string(command);
}

class KeyCommand : public ::testing::TestWithParam<KeyCase> {};

TEST_P(KeyCommand, PressesItsKeyInsideTheCall) {
    Rig rig;
    rig.handle(GetParam().command);
    expectKey(rig.input, GetParam().key);
    EXPECT_EQ(rig.main.pending(), 0U);
    EXPECT_EQ(rig.accessibility.checks, 1);
    EXPECT_EQ(rig.accessibility.prompts, 0);
    EXPECT_THAT(rig.log.lines(), ElementsAre(received(GetParam().command, "remote")));
}

TEST_P(KeyCommand, DoesNothingButLogWithoutPermission) {
    Rig rig;
    rig.accessibility.trusted = false;
    rig.handle(GetParam().command, "other");
    EXPECT_TRUE(rig.didNothing());
    EXPECT_EQ(rig.accessibility.prompts, 0);
    EXPECT_THAT(rig.log.lines(),
                ElementsAre(received(GetParam().command, "other"), denied(GetParam().command)));
}

INSTANTIATE_TEST_SUITE_P(EachRow, KeyCommand, ::testing::ValuesIn(keyCommands),
                         [](const auto& each) { return nameOf(each.param.command); });

class MediaKeyCommand : public ::testing::TestWithParam<MediaKeyCase> {};

TEST_P(MediaKeyCommand, PressesItsKeyInsideTheCallWithoutAskingForPermission) {
    Rig rig;
    rig.accessibility.trusted = false;
    rig.handle(GetParam().command);
    expectMediaKey(rig.input, GetParam().key);
    EXPECT_EQ(rig.main.pending(), 0U);
    EXPECT_EQ(rig.accessibility.checks, 0);
    EXPECT_THAT(rig.log.lines(), ElementsAre(received(GetParam().command, "remote")));
}

INSTANTIATE_TEST_SUITE_P(EachRow, MediaKeyCommand, ::testing::ValuesIn(mediaKeyCommands),
                         [](const auto& each) { return nameOf(each.param.command); });

class MediaCommand : public ::testing::TestWithParam<MediaKeyCase> {};

TEST_P(MediaCommand, PressesItsKeyInsideTheCall) {
    Rig rig;
    rig.handle(GetParam().command, "media");
    expectMediaKey(rig.input, GetParam().key);
    EXPECT_EQ(rig.main.pending(), 0U);
    EXPECT_EQ(rig.accessibility.checks, 1);
    EXPECT_EQ(rig.accessibility.prompts, 0);
    EXPECT_THAT(rig.log.lines(), ElementsAre(received(GetParam().command, "media")));
}

TEST_P(MediaCommand, LogsItsOwnWordsWithoutPermission) {
    Rig rig;
    rig.accessibility.trusted = false;
    rig.handle(GetParam().command, "media");
    EXPECT_TRUE(rig.didNothing());
    EXPECT_THAT(rig.log.lines(),
                ElementsAre(received(GetParam().command, "media"),
                            "[WebSocketServer] Error: Media keys require Accessibility permissions."));
}

INSTANTIATE_TEST_SUITE_P(EachRow, MediaCommand, ::testing::ValuesIn(mediaCommands),
                         [](const auto& each) { return nameOf(each.param.command); });

class ScriptCommand : public ::testing::TestWithParam<ScriptCase> {};

TEST_P(ScriptCommand, RunsItsScriptOnTheMainQueue) {
    Rig rig;
    rig.handle(GetParam().command);
    EXPECT_THAT(rig.scripts.scripts, IsEmpty());
    EXPECT_EQ(rig.main.runAll(), 1U);
    ASSERT_EQ(rig.scripts.scripts.size(), 1U);
    EXPECT_EQ(rig.scripts.scripts[0].action, GetParam().action);
    EXPECT_THAT(rig.input.posted, IsEmpty());
    EXPECT_EQ(rig.accessibility.checks, GetParam().isGuarded ? 1 : 0);
}

TEST_P(ScriptCommand, NeedsPermissionOnlyToLockAndToSleep) {
    Rig rig;
    rig.accessibility.trusted = false;
    rig.handle(GetParam().command);
    rig.main.runAll();
    EXPECT_EQ(rig.scripts.scripts.size(), GetParam().isGuarded ? 0U : 1U);
    EXPECT_EQ(rig.log.lines().size(), GetParam().isGuarded ? 2U : 1U);
    EXPECT_EQ(rig.log.lines().back(),
              GetParam().isGuarded ? denied(GetParam().command) : received(GetParam().command, "remote"));
}

INSTANTIATE_TEST_SUITE_P(EachRow, ScriptCommand, ::testing::ValuesIn(scriptCommands),
                         [](const auto& each) { return nameOf(each.param.command); });

// Modifiers in front of a command.

struct PrefixCase {
    const char* name;
    const char* command;
    Key key;
    Modifiers modifiers;
    friend void PrintTo(const PrefixCase& value, std::ostream* out) { *out << value.command; }
};
constexpr PrefixCase prefixes[] = {
    {"OneModifier", "cmd_key_return", Key::returnKey, {.command = true}},
    {"TwoModifiersJoinedByPlus", "cmd+shift_key_left", Key::left, {.command = true, .shift = true}},
    {"AllFourModifiers",
     "shift+option+ctrl+cmd_key_up",
     Key::up,
     {.command = true, .control = true, .option = true, .shift = true}},
    {"RepeatedAndUnknownModifiers", "cmd+cmd+hyper_key_down", Key::down, {.command = true}},
    {"EmptyModifierName", "_key_left", Key::left, {}},
    {"EmptyModifierNamesAroundAPlus", "+cmd+_key_left", Key::left, {.command = true}},
    {"NamesAreComparedExactly", "Cmd+CTRL+alt+command_key_left", Key::left, {}},
    {"SlidesTakeModifiers", "cmd_slide_next", Key::right, {.command = true}},
    {"PresentationsTakeModifiers", "ctrl_presentation_prev", Key::left, {.control = true}},
    {"CommandKeyWithItself", "cmd_key_command", Key::command, {.command = true}},
};

class PrefixedCommand : public ::testing::TestWithParam<PrefixCase> {};

TEST_P(PrefixedCommand, PressesTheKeyWithItsModifiers) {
    Rig rig;
    rig.handle(GetParam().command);
    expectKey(rig.input, GetParam().key, GetParam().modifiers);
}

TEST_P(PrefixedCommand, IsNamedAsItCameWhenPermissionIsMissing) {
    Rig rig;
    rig.accessibility.trusted = false;
    rig.handle(GetParam().command);
    EXPECT_TRUE(rig.didNothing());
    EXPECT_EQ(rig.log.lines().back(), denied(GetParam().command));
}

INSTANTIATE_TEST_SUITE_P(EachForm, PrefixedCommand, ::testing::ValuesIn(prefixes),
                         [](const auto& each) { return std::string(each.param.name); });

class UnmatchedCommand : public ::testing::TestWithParam<const char*> {};

TEST_P(UnmatchedCommand, EndsAfterTheFirstLogLine) {
    Rig rig;
    rig.accessibility.trusted = false;
    rig.handle(GetParam());
    EXPECT_TRUE(rig.didNothing());
    EXPECT_EQ(rig.accessibility.checks, 0);
    EXPECT_THAT(rig.log.lines(), ElementsAre(received(GetParam(), "remote")));
}

INSTANTIATE_TEST_SUITE_P(EachName, UnmatchedCommand,
                         ::testing::Values("", "unknown", "cmd_vol_up", "cmd_seek_forward", "KEY_LEFT",
                                           "key_left ", "key", "cmd_option_key_left", "ctrl_key_",
                                           "cmd+key_left", "key_left_key_left", "next_slide_", "play_pause",
                                           "_", "mouse_move"));

// What `type` decides.

TEST(CommandRouter, IgnoresAMessageWithoutACommand) {
    Rig rig;
    rig.router.handle({.type = "mouse_move", .dx = 3.0, .dy = 4.0});
    rig.router.handle({.type = "keyboard_text", .text = "hello"});
    EXPECT_TRUE(rig.didNothing());
    EXPECT_THAT(rig.log.lines(), IsEmpty());
}

TEST(CommandRouter, TreatsEveryUnknownTypeAsRemote) {
    for (const std::string_view type : {"remote", "whatever", "", "Media", "MOUSE_MOVE"}) {
        Rig rig;
        rig.handle("key_left", type);
        expectKey(rig.input, Key::left);
        EXPECT_THAT(rig.log.lines(), ElementsAre(received("key_left", type)));
    }
}

TEST(CommandRouter, LetsTheTypeDecideWhatNextMeans) {
    Rig media;
    media.handle("next", "media");
    expectMediaKey(media.input, MediaKey::nextTrack);
    Rig other;
    other.handle("next", "slides");
    expectKey(other.input, Key::right);
}

TEST(CommandRouter, LetsTheTypeDecideWhatVolumeUpMeans) {
    Rig media;
    media.handle("vol_up", "media");
    expectMediaKey(media.input, MediaKey::soundUp);
    EXPECT_EQ(media.main.pending(), 0U);
    Rig other;
    other.handle("vol_up", "anything");
    EXPECT_THAT(other.input.posted, IsEmpty());
    EXPECT_EQ(other.main.pending(), 1U);
}

TEST(CommandRouter, HandsAMediaMessageWithAnotherCommandOnToAllCommands) {
    Rig rig;
    rig.handle("lock_mac", "media");
    EXPECT_EQ(rig.accessibility.checks, 2);
    rig.main.runAll();
    ASSERT_EQ(rig.scripts.scripts.size(), 1U);
    EXPECT_EQ(rig.scripts.scripts[0].action, SystemScript::Action::lockScreen);

    rig.handle("cmd_key_left", "media");
    expectKey(rig.input, Key::left, {.command = true});
}

TEST(CommandRouter, ComparesMediaCommandsWithTheirPrefix) {
    Rig rig;
    rig.handle("cmd_slide_next", "media");
    expectKey(rig.input, Key::right, {.command = true});
}

TEST(CommandRouter, DoesNothingForAnEmptyCommand) {
    for (const char* type : {"media", "remote"}) {
        Rig rig;
        rig.handle("", type);
        EXPECT_TRUE(rig.didNothing()) << type;
    }
}

TEST(CommandRouter, StopsEveryMediaMessageWithoutPermission) {
    Rig rig;
    rig.accessibility.trusted = false;
    rig.handle("empty_trash", "media");
    EXPECT_TRUE(rig.didNothing());
    EXPECT_EQ(rig.accessibility.checks, 1);
}

// Typing.

TEST(CommandRouter, TypesTextInsideTheCallWithoutAskingForPermission) {
    Rig rig;
    rig.accessibility.trusted = false;
    rig.log.onLine = [&](const std::string&) { EXPECT_THAT(rig.input.posted, IsEmpty()) << "logged first"; };
    rig.router.handle({.command = "anything", .type = "keyboard_text", .text = "gr\u00FC\u00DFe"});
    EXPECT_THAT(rig.input.posted, ElementsAre(Input(TypedText{"gr\u00FC\u00DFe"})));
    EXPECT_EQ(rig.accessibility.checks, 0);
    EXPECT_EQ(rig.main.pending(), 0U);
    EXPECT_THAT(rig.log.lines(), ElementsAre(received("anything", "keyboard_text"),
                                             "[WebSocketServer] Typing unicode text: gr\u00FC\u00DFe"));
}

TEST(CommandRouter, TypesAnEmptyText) {
    Rig rig;
    rig.router.handle({.command = "", .type = "keyboard_text", .text = ""});
    EXPECT_THAT(rig.input.posted, ElementsAre(Input(TypedText{})));
}

TEST(CommandRouter, EndsATypingMessageWithoutText) {
    Rig rig;
    rig.handle("key_left", "keyboard_text");
    EXPECT_TRUE(rig.didNothing());
    EXPECT_THAT(rig.log.lines(), ElementsAre(received("key_left", "keyboard_text")));
}

// The pointer.

TEST(CommandRouter, MovesThePointerOnTheMainQueue) {
    Rig rig;
    rig.accessibility.trusted = false;
    rig.router.handle({.command = "move", .type = "mouse_move", .dx = 1.5, .dy = -2.25});
    EXPECT_THAT(rig.input.posted, IsEmpty());
    EXPECT_EQ(rig.main.runAll(), 1U);
    EXPECT_THAT(rig.input.posted, ElementsAre(Input(MovedPointer{1.5, -2.25})));
    EXPECT_EQ(rig.accessibility.checks, 0);
    EXPECT_THAT(rig.log.lines(), ElementsAre(received("move", "mouse_move")));
}

TEST(CommandRouter, CountsAMissingDeltaAsZero) {
    Rig rig;
    rig.router.handle({.command = "move", .type = "mouse_move", .dx = 7.0});
    rig.router.handle({.command = "move", .type = "mouse_move", .dy = 9.0});
    rig.router.handle({.command = "move", .type = "mouse_move"});
    rig.main.runAll();
    EXPECT_THAT(rig.input.posted,
                ElementsAre(Input(MovedPointer{7, 0}), Input(MovedPointer{0, 9}), Input(MovedPointer{0, 0})));
}

TEST(CommandRouter, PostsAMoveByNothing) {
    Rig rig;
    rig.router.handle({.command = "move", .type = "mouse_move", .dx = 0.0, .dy = 0.0});
    rig.main.runAll();
    EXPECT_THAT(rig.input.posted, ElementsAre(Input(MovedPointer{0, 0})));
}

TEST(CommandRouter, NeverReadsTheCommandOfAMove) {
    Rig rig;
    rig.handle("key_left", "mouse_move");
    rig.main.runAll();
    EXPECT_THAT(rig.input.posted, ElementsAre(Input(MovedPointer{0, 0})));
}

TEST(CommandRouter, ClicksOnTheMainQueue) {
    Rig rig;
    rig.accessibility.trusted = false;
    {
        // The job outlives the message.
        const std::string button = "right";
        rig.router.handle({.command = "click", .type = "mouse_click", .button = button});
    }
    EXPECT_THAT(rig.input.posted, IsEmpty());
    EXPECT_EQ(rig.main.runAll(), 1U);
    EXPECT_THAT(rig.input.posted, ElementsAre(Input(MouseButton::right)));
    EXPECT_EQ(rig.accessibility.checks, 0);
}

TEST(CommandRouter, ClicksLeftWhenNoButtonIsNamed) {
    Rig rig;
    rig.handle("click", "mouse_click");
    rig.main.runAll();
    EXPECT_THAT(rig.input.posted, ElementsAre(Input(MouseButton::left)));
}

// Addresses.

TEST(CommandRouter, OpensAnAddressOnTheMainQueue) {
    Rig rig;
    rig.accessibility.trusted = false;
    rig.router.handle({.command = "open_url", .url = "https://example.org/?a=b&c=d"});
    EXPECT_THAT(rig.scripts.scripts, IsEmpty());
    rig.main.runAll();
    ASSERT_EQ(rig.scripts.scripts.size(), 1U);
    EXPECT_EQ(rig.scripts.scripts[0].action, SystemScript::Action::openLocation);
    EXPECT_EQ(rig.scripts.scripts[0].address, "https://example.org/?a=b&c=d");
    EXPECT_EQ(rig.accessibility.checks, 0);
}

TEST(CommandRouter, PostsNothingWithoutAnAddress) {
    Rig rig;
    rig.handle("open_url");
    EXPECT_TRUE(rig.didNothing());
    EXPECT_THAT(rig.log.lines(), ElementsAre(received("open_url", "remote")));
}

// Order.

TEST(CommandRouter, RunsScriptsInTheOrderOfTheMessages) {
    Rig rig;
    for (int count = 0; count < 6; ++count) {
        rig.handle("vol_up");
    }
    rig.handle("vol_down");
    EXPECT_EQ(rig.main.runAll(), 7U);
    ASSERT_EQ(rig.scripts.scripts.size(), 7U);
    for (std::size_t index = 0; index < 6; ++index) {
        EXPECT_EQ(rig.scripts.scripts[index].action, SystemScript::Action::volumeUp);
    }
    EXPECT_EQ(rig.scripts.scripts[6].action, SystemScript::Action::volumeDown);
}

TEST(CommandRouter, LetsAKeyPassAnEarlierClick) {
    Rig rig;
    rig.handle("click", "mouse_click");
    rig.router.handle({.command = "move", .type = "mouse_move", .dx = 1.0});
    rig.handle("key_left");
    expectKey(rig.input, Key::left);
    rig.main.runAll();
    EXPECT_THAT(rig.input.posted, ElementsAre(Input(PressedKey{Key::left, {}}), Input(MouseButton::left),
                                              Input(MovedPointer{1, 0})));
}

TEST(CommandRouter, LogsTheErrorOfAScriptOnceItHasRun) {
    Rig rig;
    rig.scripts.error = "{ NSAppleScriptErrorNumber = 1 }";
    rig.handle("empty_trash");
    EXPECT_EQ(rig.log.lines().size(), 1U);
    rig.main.runAll();
    EXPECT_THAT(rig.log.lines(),
                ElementsAre(received("empty_trash", "remote"),
                            "[WebSocketServer] AppleScript Error: { NSAppleScriptErrorNumber = 1 }"));
}

} // namespace

} // namespace velloway::test
