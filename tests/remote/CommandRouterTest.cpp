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

using Kind = FakeInputEvents::Posted::Kind;
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

void expectCGKey(const FakeInputEvents& input, int keyCode, std::uint64_t flags) {
    ASSERT_EQ(input.posted.size(), 2U);
    for (const auto& event : input.posted) {
        EXPECT_EQ(event.kind, Kind::keyboard);
        EXPECT_EQ(event.virtualKey, keyCode);
        EXPECT_EQ(event.flags, flags);
        EXPECT_FALSE(event.text);
    }
    EXPECT_TRUE(input.posted[0].keyDown);
    EXPECT_FALSE(input.posted[1].keyDown);
}

void expectSystemKey(const FakeInputEvents& input, int key) {
    ASSERT_EQ(input.posted.size(), 2U);
    EXPECT_EQ(input.posted[0].kind, Kind::systemDefined);
    EXPECT_EQ(input.posted[0].data1, key * 0x10000 + 0xA00);
    EXPECT_EQ(input.posted[1].data1, key * 0x10000 + 0xB00);
}

// The tables, written out once more by hand: what the phone may rely on.

struct CGKeyCase {
    const char* command;
    int keyCode;
    friend void PrintTo(const CGKeyCase& value, std::ostream* out) { *out << value.command; }
};
constexpr CGKeyCase cgKeys[] = {
    {"key_escape", 53},    {"key_right", 124},     {"key_left", 123},
    {"key_up", 126},       {"key_down", 125},      {"key_return", 36},
    {"key_delete", 51},    {"key_control", 59},    {"key_option", 58},
    {"key_command", 55},   {"next", 124},          {"slide_next", 124},
    {"seek_forward", 124}, {"prev", 123},          {"presentation_next", 124},
    {"slide_prev", 123},   {"seek_backward", 123}, {"presentation_prev", 123},
};

struct SystemKeyCase {
    const char* command;
    int key;
    friend void PrintTo(const SystemKeyCase& value, std::ostream* out) { *out << value.command; }
};
constexpr SystemKeyCase systemKeys[] = {
    {"mute_mac", 7},         {"unmute_mac", 7},           {"brightness_up", 21},
    {"brightness_down", 22}, {"screen_brightness_up", 2}, {"screen_brightness_down", 3},
};
constexpr SystemKeyCase mediaKeys[] = {
    {"play_pause", 16}, {"next", 17}, {"prev", 18}, {"vol_up", 0}, {"vol_down", 1},
};

struct ScriptCase {
    const char* command;
    bool isGuarded;
    SystemScript::Action action;
    const char* source;
    friend void PrintTo(const ScriptCase& value, std::ostream* out) { *out << value.command; }
};
constexpr ScriptCase scriptCommands[] = {
    {"vol_up", false, SystemScript::Action::volumeUp,
     "set volume output volume (output volume of (get volume settings) + 5)"},
    {"vol_down", false, SystemScript::Action::volumeDown,
     "set volume output volume (output volume of (get volume settings) - 5)"},
    {"empty_trash", false, SystemScript::Action::emptyTrash, "tell application \"Finder\" to empty trash"},
    {"lock_mac", true, SystemScript::Action::lockScreen, "tell application \"System Events\" to lock screen"},
    {"sleep_mac", true, SystemScript::Action::sleep, "tell application \"System Events\" to sleep"},
};

std::string nameOf(std::string_view command) {
    return std::string(command);
}

class KeyCommand : public ::testing::TestWithParam<CGKeyCase> {};

TEST_P(KeyCommand, PressesItsKeyInsideTheCall) {
    Rig rig;
    rig.handle(GetParam().command);
    expectCGKey(rig.input, GetParam().keyCode, 0);
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

INSTANTIATE_TEST_SUITE_P(EachRow, KeyCommand, ::testing::ValuesIn(cgKeys),
                         [](const auto& each) { return nameOf(each.param.command); });

class SystemKeyCommand : public ::testing::TestWithParam<SystemKeyCase> {};

TEST_P(SystemKeyCommand, PressesItsKeyInsideTheCallWithoutAskingForPermission) {
    Rig rig;
    rig.accessibility.trusted = false;
    rig.handle(GetParam().command);
    expectSystemKey(rig.input, GetParam().key);
    EXPECT_EQ(rig.main.pending(), 0U);
    EXPECT_EQ(rig.accessibility.checks, 0);
    EXPECT_THAT(rig.log.lines(), ElementsAre(received(GetParam().command, "remote")));
}

INSTANTIATE_TEST_SUITE_P(EachRow, SystemKeyCommand, ::testing::ValuesIn(systemKeys),
                         [](const auto& each) { return nameOf(each.param.command); });

class MediaCommand : public ::testing::TestWithParam<SystemKeyCase> {};

TEST_P(MediaCommand, PressesItsKeyInsideTheCall) {
    Rig rig;
    rig.handle(GetParam().command, "media");
    expectSystemKey(rig.input, GetParam().key);
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

INSTANTIATE_TEST_SUITE_P(EachRow, MediaCommand, ::testing::ValuesIn(mediaKeys),
                         [](const auto& each) { return nameOf(each.param.command); });

class ScriptCommand : public ::testing::TestWithParam<ScriptCase> {};

TEST_P(ScriptCommand, RunsItsScriptOnTheMainQueue) {
    Rig rig;
    rig.handle(GetParam().command);
    EXPECT_THAT(rig.scripts.scripts, IsEmpty());
    EXPECT_EQ(rig.main.runAll(), 1U);
    ASSERT_EQ(rig.scripts.scripts.size(), 1U);
    EXPECT_EQ(rig.scripts.scripts[0].action, GetParam().action);
    EXPECT_EQ(rig.scripts.scripts[0].sourceText, GetParam().source);
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
    int keyCode;
    std::uint64_t flags;
    friend void PrintTo(const PrefixCase& value, std::ostream* out) { *out << value.command; }
};
constexpr PrefixCase prefixes[] = {
    {"OneModifier", "cmd_key_return", 36, 0x100000},
    {"TwoModifiersJoinedByPlus", "cmd+shift_key_left", 123, 0x120000},
    {"AllFourModifiers", "shift+option+ctrl+cmd_key_up", 126, 0x1E0000},
    {"RepeatedAndUnknownModifiers", "cmd+cmd+hyper_key_down", 125, 0x100000},
    {"EmptyModifierName", "_key_left", 123, 0},
    {"EmptyModifierNamesAroundAPlus", "+cmd+_key_left", 123, 0x100000},
    {"NamesAreComparedExactly", "Cmd+CTRL+alt+command_key_left", 123, 0},
    {"SlidesTakeModifiers", "cmd_slide_next", 124, 0x100000},
    {"PresentationsTakeModifiers", "ctrl_presentation_prev", 123, 0x40000},
    {"CommandKeyWithItsOwnFlag", "cmd_key_command", 55, 0x100000},
};

class PrefixedCommand : public ::testing::TestWithParam<PrefixCase> {};

TEST_P(PrefixedCommand, PressesTheKeyWithItsFlags) {
    Rig rig;
    rig.handle(GetParam().command);
    expectCGKey(rig.input, GetParam().keyCode, GetParam().flags);
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
        expectCGKey(rig.input, 123, 0);
        EXPECT_THAT(rig.log.lines(), ElementsAre(received("key_left", type)));
    }
}

TEST(CommandRouter, LetsTheTypeDecideWhatNextMeans) {
    Rig media;
    media.handle("next", "media");
    expectSystemKey(media.input, 17);
    Rig other;
    other.handle("next", "slides");
    expectCGKey(other.input, 124, 0);
}

TEST(CommandRouter, LetsTheTypeDecideWhatVolumeUpMeans) {
    Rig media;
    media.handle("vol_up", "media");
    expectSystemKey(media.input, 0);
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
    expectCGKey(rig.input, 123, 0x100000);
}

TEST(CommandRouter, ComparesMediaCommandsWithTheirPrefix) {
    Rig rig;
    rig.handle("cmd_slide_next", "media");
    expectCGKey(rig.input, 124, 0x100000);
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
    rig.router.handle({.command = "anything", .type = "keyboard_text", .text = "gr\u00FC\u00DFe"});
    ASSERT_EQ(rig.input.posted.size(), 2U);
    EXPECT_EQ(rig.input.posted[0].text, u"gr\u00FC\u00DFe");
    EXPECT_EQ(rig.accessibility.checks, 0);
    EXPECT_EQ(rig.main.pending(), 0U);
    EXPECT_THAT(rig.log.lines(), ElementsAre(received("anything", "keyboard_text"),
                                             "[WebSocketServer] Typing unicode text: gr\u00FC\u00DFe"));
}

TEST(CommandRouter, TypesAnEmptyText) {
    Rig rig;
    rig.router.handle({.command = "", .type = "keyboard_text", .text = ""});
    ASSERT_EQ(rig.input.posted.size(), 2U);
    EXPECT_EQ(rig.input.posted[0].text, u"");
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
    ASSERT_EQ(rig.input.posted.size(), 1U);
    EXPECT_EQ(rig.input.posted[0].position, (Point{101.5, 197.75}));
    EXPECT_EQ(rig.accessibility.checks, 0);
    EXPECT_THAT(rig.log.lines(), ElementsAre(received("move", "mouse_move")));
}

TEST(CommandRouter, CountsAMissingDeltaAsZero) {
    Rig rig;
    rig.router.handle({.command = "move", .type = "mouse_move", .dx = 7.0});
    rig.router.handle({.command = "move", .type = "mouse_move", .dy = 9.0});
    rig.router.handle({.command = "move", .type = "mouse_move"});
    rig.main.runAll();
    ASSERT_EQ(rig.input.posted.size(), 3U);
    EXPECT_EQ(rig.input.posted[0].position, (Point{107, 200}));
    EXPECT_EQ(rig.input.posted[1].position, (Point{107, 209}));
    EXPECT_EQ(rig.input.posted[2].position, (Point{107, 209}));
}

TEST(CommandRouter, PostsAMoveByNothing) {
    Rig rig;
    rig.router.handle({.command = "move", .type = "mouse_move", .dx = 0.0, .dy = 0.0});
    rig.main.runAll();
    ASSERT_EQ(rig.input.posted.size(), 1U);
    EXPECT_EQ(rig.input.posted[0].mouseType, MouseEventType::moved);
}

TEST(CommandRouter, NeverReadsTheCommandOfAMove) {
    Rig rig;
    rig.handle("key_left", "mouse_move");
    rig.main.runAll();
    ASSERT_EQ(rig.input.posted.size(), 1U);
    EXPECT_EQ(rig.input.posted[0].kind, Kind::mouse);
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
    ASSERT_EQ(rig.input.posted.size(), 2U);
    EXPECT_EQ(rig.input.posted[0].mouseType, MouseEventType::rightDown);
    EXPECT_EQ(rig.accessibility.checks, 0);
}

TEST(CommandRouter, ClicksLeftWhenNoButtonIsNamed) {
    Rig rig;
    rig.handle("click", "mouse_click");
    rig.main.runAll();
    ASSERT_EQ(rig.input.posted.size(), 2U);
    EXPECT_EQ(rig.input.posted[0].mouseType, MouseEventType::leftDown);
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
    EXPECT_EQ(rig.scripts.scripts[0].sourceText, "open location \"https://example.org/?a=b&c=d\"");
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
    ASSERT_EQ(rig.input.posted.size(), 2U);
    rig.main.runAll();
    ASSERT_EQ(rig.input.posted.size(), 5U);
    EXPECT_EQ(rig.input.posted[0].kind, Kind::keyboard);
    EXPECT_EQ(rig.input.posted[2].mouseType, MouseEventType::leftDown);
    EXPECT_EQ(rig.input.posted[4].mouseType, MouseEventType::moved);
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
