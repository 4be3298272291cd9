#include "tabs/TabHarness.h"
#include "tabs/remote/RemoteTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Key = KeyEquivalent::Key;

class RemoteTabTest : public testing::Test, protected TabHarness {};

struct ButtonCase {
    std::string_view symbol, action, command;
};

/// By position in the table.
const std::vector<ButtonCase> buttonCases{
    {"backward.fill", "media_command", "prev"},
    {"gobackward.5", "media_command", "seek_backward"},
    {"playpause.fill", "media_command", "play_pause"},
    {"goforward.5", "media_command", "seek_forward"},
    {"forward.fill", "media_command", "next"},
    {"speaker.wave.1.fill", "media_command", "vol_down"},
    {"speaker.wave.3.fill", "media_command", "vol_up"},
    {"chevron.up", "nav_command", "dpad_up"},
    {"chevron.left", "nav_command", "dpad_left"},
    {"circle.fill", "nav_command", "dpad_center"},
    {"chevron.right", "nav_command", "dpad_right"},
    {"chevron.down", "nav_command", "dpad_down"},
    {"arrow.left", "nav_command", "back"},
    {"return", "nav_command", "dpad_center"},
    {"arrow.right.to.line", "nav_command", "tab_forward"},
    {"arrow.left.to.line", "nav_command", "tab_backward"},
    {"house.fill", "nav_command", "home"},
    {"square.stack.fill", "nav_command", "recents"},
    {"bell.fill", "nav_command", "notifications"},
    {"magnifyingglass", "nav_command", "search"},
    {"ellipsis.circle.fill", "nav_command", "app_menu"},
};

TEST_F(RemoteTabTest, EachButtonSendsItsName) {
    ASSERT_EQ(remoteButtons.size(), buttonCases.size());
    for (std::size_t i = 0; i < buttonCases.size(); ++i) {
        EXPECT_EQ(remoteButtons[i].symbol, buttonCases[i].symbol);
        view->remote.pressRemoteButton(i);
        EXPECT_THAT(takeSent(), ElementsAre(R"({"action":")" + std::string(buttonCases[i].action) +
                                            R"(","command":")" + std::string(buttonCases[i].command) + "\"}"));
    }
}

TEST_F(RemoteTabTest, AKeyWithExactlyItsModifiersPressesItsButton) {
    const std::vector<std::pair<KeyEquivalent, std::string>> cases{
        {{.key = Key::upArrow}, "dpad_up"},
        {{.key = Key::leftArrow}, "dpad_left"},
        {{.key = Key::space}, "dpad_center"},
        {{.key = Key::rightArrow}, "dpad_right"},
        {{.key = Key::downArrow}, "dpad_down"},
        {{.key = Key::escape}, "back"},
        {{.key = Key::returnKey}, "dpad_center"},
        {{.key = Key::tab}, "tab_forward"},
        {{.key = Key::tab, .shift = true}, "tab_backward"},
        {{.key = Key::returnKey, .command = true}, "home"},
        {{.key = Key::tab, .option = true}, "recents"},
        {{.key = Key::n, .command = true}, "notifications"},
        {{.key = Key::space, .option = true}, "search"},
        {{.key = Key::escape, .control = true}, "app_menu"},
    };
    for (const auto& [pressed, command] : cases) {
        EXPECT_TRUE(view->remote.pressRemoteShortcut(pressed)) << command;
        EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"nav_command","command":")" + command + "\"}"));
    }
}

TEST_F(RemoteTabTest, OtherKeysBelongToNobody) {
    for (const KeyEquivalent& pressed :
         {KeyEquivalent{}, KeyEquivalent{.key = Key::n}, KeyEquivalent{.key = Key::space, .shift = true},
          KeyEquivalent{.key = Key::tab, .shift = true, .option = true},
          KeyEquivalent{.key = Key::n, .shift = true, .command = true},
          KeyEquivalent{.key = Key::upArrow, .control = true}}) {
        EXPECT_FALSE(view->remote.pressRemoteShortcut(pressed));
    }
    EXPECT_THAT(takeSent(), IsEmpty());
}

TEST_F(RemoteTabTest, MediaAndVolumeHaveNoKeysAndNoTooltips) {
    for (const RemoteButton& button : remoteButtons) {
        const bool isMedia = button.operation == RemoteOperation::sendMediaCommand;
        EXPECT_EQ(button.shortcut.key == Key::none, isMedia) << button.command;
        EXPECT_EQ(button.tooltip.empty(), isMedia) << button.command;
    }
}

TEST_F(RemoteTabTest, TitlesAndTooltipsAreExact) {
    const std::vector<std::pair<std::string_view, std::string_view>> expected{
        {"", "Up (↑)"},
        {"", "Left (←)"},
        {"", "Select / Enter (Space or Return)"},
        {"", "Right (→)"},
        {"", "Down (↓)"},
        {"Back", "Back (Esc or ⌘⌫)"},
        {"Enter", "Enter / Tap (Return)"},
        {"Tab →", "Focus Next (Tab)"},
        {"← Tab", "Focus Prev (⇧Tab)"},
        {"Home", "Home Screen (⌘Return)"},
        {"Recents", "Recents (⌥Tab)"},
        {"Notifications", "Notifications (⌘N)"},
        {"Search", "Global Search (⌥Space)"},
        {"App Menu", "App Menu (⌃Esc)"},
    };
    constexpr std::size_t firstNavigation = 7;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(remoteButtons.at(firstNavigation + i).title, expected[i].first);
        EXPECT_EQ(remoteButtons.at(firstNavigation + i).tooltip, expected[i].second);
    }
}

TEST_F(RemoteTabTest, TheShortcutListIsExact) {
    const std::vector<std::pair<std::string_view, std::string_view>> expected{
        {"↑ ↓ ← →", "D-Pad directional"},
        {"Space", "D-Pad center / tap"},
        {"Return", "Enter"},
        {"Tab / ⇧Tab", "Focus next / previous"},
        {"Esc", "Back"},
        {"⌘Return", "Home screen"},
        {"⌥Tab", "Recents / App overview"},
        {"⌘N", "Notifications panel"},
        {"⌥Space", "Global search"},
        {"⌃Esc", "App menu / options"}};
    ASSERT_EQ(shortcutRows.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(shortcutRows[i].key, expected[i].first);
        EXPECT_EQ(shortcutRows[i].meaning, expected[i].second);
    }
}

// The warning

TEST_F(RemoteTabTest, TheWarningFollowsThePermission) {
    on.accessibility.trusted = false;
    view->remote.refreshAccessibilityStatus();
    EXPECT_FALSE(view->remote.isAccessibilityEnabled.get());

    int redraws = 0;
    const auto observer = view->remote.isAccessibilityEnabled.observe([&](bool) { ++redraws; });
    on.accessibility.trusted = true;
    EXPECT_FALSE(view->remote.isAccessibilityEnabled.get());
    view->remote.refreshAccessibilityStatus();
    EXPECT_TRUE(view->remote.isAccessibilityEnabled.get());
    EXPECT_EQ(redraws, 1);

    on.accessibility.trusted = false;
    view->applicationDidBecomeActive();
    EXPECT_FALSE(view->remote.isAccessibilityEnabled.get());
    on.accessibility.trusted = true;
    view->viewAppears();
    EXPECT_TRUE(view->remote.isAccessibilityEnabled.get());
    EXPECT_EQ(on.accessibility.prompts, 0);
}

TEST_F(RemoteTabTest, TheWarningOpensTheSystemsSettings) {
    view->remote.openAccessibilitySettings();
    EXPECT_THAT(on.workspace.panes, ElementsAre(SettingsPane::accessibility));
}

TEST(RemoteTextsTest, AreExact) {
    EXPECT_EQ(textOf(remoteTexts, "warning"),
              "Velloway needs Accessibility permission to control media, presentation slides, and system "
              "features like locking or sleeping your Mac.");
    EXPECT_EQ(
        textOf(remoteTexts, "warningNote"),
        "Note: If permission is already granted, try removing Velloway from the list and adding it again.");
    EXPECT_EQ(textOf(remoteTexts, "warningTitle"), "Accessibility Access Required");
}

} // namespace
} // namespace velloway::test
