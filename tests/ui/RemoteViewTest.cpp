#include "tabs/remote/RemoteModel.h"
#include "ui/ViewTest.h"

#include <map>

namespace velloway::test {
namespace {

std::string messageOf(const RemoteButton& button) {
    const char* action =
        button.operation == RemoteOperation::sendMediaCommand ? "media_command" : "nav_command";
    return std::string(R"({"action":")") + action + R"(","command":")" + std::string(button.command) + "\"}";
}

Qt::Key qtKey(KeyEquivalent::Key key) {
    using Key = KeyEquivalent::Key;
    const std::map<Key, Qt::Key> keys{
        {Key::upArrow, Qt::Key_Up},       {Key::downArrow, Qt::Key_Down}, {Key::leftArrow, Qt::Key_Left},
        {Key::rightArrow, Qt::Key_Right}, {Key::space, Qt::Key_Space},    {Key::escape, Qt::Key_Escape},
        {Key::returnKey, Qt::Key_Return}, {Key::tab, Qt::Key_Tab},        {Key::n, Qt::Key_N}};
    return keys.at(key);
}

Qt::KeyboardModifiers modifiers(const KeyEquivalent& of) {
    Qt::KeyboardModifiers held;
    held.setFlag(Qt::ShiftModifier, of.shift);
    held.setFlag(Qt::ControlModifier, of.control);
    held.setFlag(Qt::AltModifier, of.option);
    held.setFlag(Qt::MetaModifier, of.command);
    return held;
}

class RemoteViewTest : public ViewTest {
protected:
    RemoteViewTest() {
        open(7);
        openWindow().resize(850, 900);
        require("a taller window", [] { return openWindow().height() == 900; });
        settle();
        takeSent();
    }
    QQuickItem* button(std::size_t index) { return part(("remote" + std::to_string(index)).c_str()); }
};

class EveryRemoteButton : public RemoteViewTest, public testing::WithParamInterface<std::size_t> {};

TEST_P(EveryRemoteButton, SendsItsCommandWhenItIsClicked) {
    const RemoteButton& expected = remoteButtons[GetParam()];
    QQuickItem* shown = button(GetParam());
    EXPECT_EQ(shown->property("text").toString().toStdString(), expected.title);
    EXPECT_EQ(shown->property("symbol").toString().toStdString(), expected.symbol);
    EXPECT_EQ(shown->property("tip").toString().toStdString(), expected.tooltip);
    click(shown);
    EXPECT_THAT(takeSent(), ElementsAre(messageOf(expected)));
}

TEST_P(EveryRemoteButton, SendsItsCommandOnItsShortcutAndOnNoOther) {
    const RemoteButton& expected = remoteButtons[GetParam()];
    if (expected.shortcut.key == KeyEquivalent::Key::none) {
        return;
    }
    const Qt::Key pressed = qtKey(expected.shortcut.key);
    key(pressed, modifiers(expected.shortcut));
    EXPECT_THAT(takeSent(), ElementsAre(messageOf(expected)));

    KeyEquivalent other = expected.shortcut;
    other.control = !other.control;
    other.option = !other.option;
    key(pressed, modifiers(other));
    EXPECT_THAT(takeSent(), IsEmpty());
}

TEST_P(EveryRemoteButton, StillHasItsShortcutAfterAClickOnAnotherButton) {
    const RemoteButton& expected = remoteButtons[GetParam()];
    if (expected.shortcut.key == KeyEquivalent::Key::none) {
        return;
    }
    click(button(0));
    takeSent();
    key(qtKey(expected.shortcut.key), modifiers(expected.shortcut));
    EXPECT_THAT(takeSent(), ElementsAre(messageOf(expected)));
}

INSTANTIATE_TEST_SUITE_P(, EveryRemoteButton, testing::Range<std::size_t>(0, remoteButtons.size()));

TEST_F(RemoteViewTest, ShiftTabAsTheToolkitReportsItSendsTabBackward) {
    key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"nav_command","command":"tab_backward"})"));
}

TEST_F(RemoteViewTest, CommandNMakesNoNewWindow) {
    const auto before = QGuiApplication::topLevelWindows().size();
    key(Qt::Key_N, Qt::MetaModifier);
    EXPECT_EQ(QGuiApplication::topLevelWindows().size(), before);
}

TEST_F(RemoteViewTest, ShortcutsAreNotSeenOnAnotherTab) {
    open(3);
    takeSent();
    key(Qt::Key_Space);
    key(Qt::Key_N, Qt::MetaModifier);
    key(Qt::Key_Escape);
    EXPECT_THAT(takeSent(), IsEmpty());
}

TEST_F(RemoteViewTest, ShortcutsWorkWhenTheTabIsComeBackTo) {
    open(3);
    open(7);
    takeSent();
    key(Qt::Key_Space);
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"nav_command","command":"dpad_center"})"));
}

TEST_F(RemoteViewTest, ShortcutsWorkAfterTheTabWasChosenWithTheMouse) {
    open(3);
    click("tab7");
    takeSent();
    key(Qt::Key_Tab);
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"nav_command","command":"tab_forward"})"));
}

TEST_F(RemoteViewTest, TheWarningGoesAsSoonAsACheckFindsThePermission) {
    EXPECT_FALSE(shows("accessibilityWarning"));
    on.accessibility.trusted = false;
    program.delegate().applicationDidBecomeActive();
    settle();
    ASSERT_TRUE(shows("accessibilityWarning"));
    click("openSystemSettings");
    EXPECT_EQ(on.workspace.panes.size(), 1u);
    click("refreshStatus");
    EXPECT_TRUE(shows("accessibilityWarning"));
    on.accessibility.trusted = true;
    click("refreshStatus");
    EXPECT_FALSE(shows("accessibilityWarning"));
}

TEST_F(RemoteViewTest, TheTabIsNotDisabledWithoutAPhone) {
    phone->report(ConnectionState::failed);
    settle();
    EXPECT_TRUE(button(0)->isEnabled());
    click(button(0));
}

TEST_F(RemoteViewTest, ThePageScrollsByTheKeysThatAreNoShortcuts) {
    openWindow().resize(850, 500);
    require("a lower window", [] { return openWindow().height() == 500; });
    settle();
    const auto top = [&] { return button(0)->mapToScene({}).y(); };
    const double before = top();
    key(Qt::Key_PageDown);
    const double after = top();
    EXPECT_LT(after, before - 100);
    key(Qt::Key_End);
    EXPECT_LE(top(), after);
    key(Qt::Key_PageUp);
    EXPECT_GT(top(), after - 1);
    key(Qt::Key_Home);
    EXPECT_EQ(top(), before);
    EXPECT_THAT(takeSent(), IsEmpty());
}

TEST_F(RemoteViewTest, ShortcutsWorkWhenTheTabWasChosenInTheSidebarByKeys) {
    open(1);
    part("sidebar")->forceActiveFocus();
    key(Qt::Key_Down);
    ASSERT_EQ(state().selectedTab.get(), 7);
    ASSERT_TRUE(part("sidebar")->property("activeFocus").toBool());
    takeSent();
    key(Qt::Key_Space);
    key(Qt::Key_Tab);
    key(Qt::Key_N, Qt::MetaModifier);
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"nav_command","command":"dpad_center"})",
                                        R"({"action":"nav_command","command":"tab_forward"})",
                                        R"({"action":"nav_command","command":"notifications"})"));
    key(Qt::Key_Down);
    EXPECT_EQ(state().selectedTab.get(), 6) << "the sidebar keeps its own keys";
}

} // namespace
} // namespace velloway::test
