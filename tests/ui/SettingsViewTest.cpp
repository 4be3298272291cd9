#include "ui/ViewTest.h"

#include <net/if.h>
#include <sys/socket.h>

namespace velloway::test {
namespace {

class SettingsTabViewTest : public ViewTest {
protected:
    SettingsTabViewTest() {
        open(0);
        takeSent();
    }
    void edit(const char* port) {
        click("port");
        key(Qt::Key_A, Qt::ControlModifier);
        type(port);
        key(Qt::Key_Return);
    }
    void answerStatus(AuthorizationStatus status) {
        while (!on.notificationCenter.statusQueries.empty()) {
            on.notificationCenter.answerStatus(status);
        }
        settle();
    }
};

TEST_F(SettingsTabViewTest, AnEditedPortIsTakenWhenEditingEndsAndOffersTheRestart) {
    EXPECT_EQ(text("port"), "8765");
    EXPECT_FALSE(shows("restart"));
    edit("9000");
    EXPECT_EQ(on.userDefaults.integer("port"), 9000);
    EXPECT_TRUE(shows("restart"));
    edit("9000");
    EXPECT_TRUE(shows("restart"));
}

TEST_F(SettingsTabViewTest, LeavingTheFieldEndsEditingToo) {
    click("port");
    key(Qt::Key_A, Qt::ControlModifier);
    type("9001");
    key(Qt::Key_Tab);
    EXPECT_EQ(on.userDefaults.integer("port"), 9001);
}

TEST_F(SettingsTabViewTest, LettersLeaveThePortAndTheFieldShowsItAgain) {
    edit("abc");
    EXPECT_EQ(text("port"), "8765");
    EXPECT_FALSE(shows("restart"));
    EXPECT_FALSE(on.userDefaults.has("port"));
}

TEST_F(SettingsTabViewTest, RestartListensOnTheNewPortAndGoesAtOnce) {
    edit("9000");
    const auto listeners = on.network.listeners.size();
    click("restart");
    EXPECT_FALSE(shows("restart"));
    settle();
    EXPECT_EQ(on.network.listeners.size(), listeners + 1);
}

TEST_F(SettingsTabViewTest, TheAddressIsCopied) {
    on.host.interfaces = {
        {.name = "en0", .flags = IFF_UP | IFF_RUNNING, .addressFamily = AF_INET, .numericAddress = "10.0.0.5"}};
    open(3);
    open(0);
    EXPECT_EQ(text("localIP"), "10.0.0.5");
    click("copyLocalIP");
    EXPECT_EQ(on.pasteboard.content, "10.0.0.5");
}

TEST_F(SettingsTabViewTest, TheToggleSwitchesTheLoginItem) {
    EXPECT_FALSE(part("launchAtLogin")->property("checked").toBool());
    click("launchAtLogin");
    EXPECT_TRUE(part("launchAtLogin")->property("checked").toBool());
    EXPECT_EQ(on.loginItem.current, LoginItemStatus::enabled);
    part("launchAtLogin")->forceActiveFocus();
    key(Qt::Key_Space);
    EXPECT_FALSE(part("launchAtLogin")->property("checked").toBool());
    EXPECT_EQ(on.loginItem.current, LoginItemStatus::notRegistered);
}

TEST_F(SettingsTabViewTest, AFailureOfTheLoginItemIsNotReflectedBack) {
    on.loginItem.error = "no";
    click("launchAtLogin");
    EXPECT_TRUE(part("launchAtLogin")->property("checked").toBool());
}

TEST_F(SettingsTabViewTest, TheStatusFollowsTheAddressAlone) {
    HistoryStore& store = program.historyStore();
    store.connectedRemoteIP.set(std::nullopt);
    store.connectedDeviceName.set("Pixel");
    settle();
    EXPECT_EQ(text("notConnected"), "Not Connected");
    EXPECT_FALSE(shows("statusDetail"));
    store.connectedDeviceName.set(std::nullopt);
    store.connectedWifiName.set(std::nullopt);
    store.connectedRemoteIP.set("10.0.0.9");
    settle();
    EXPECT_FALSE(shows("notConnected"));
    EXPECT_FALSE(shows("deviceName"));
    EXPECT_EQ(text("statusDetail"), "IP: 10.0.0.9");
}

TEST_F(SettingsTabViewTest, TheBatteryIsRedBelowTwenty) {
    HistoryStore& store = program.historyStore();
    EXPECT_FALSE(shows("batteryText"));
    store.batteryLevel.set(19);
    settle();
    EXPECT_EQ(text("batteryText"), "19%");
    const QVariant red = part("batteryText")->property("color");
    store.batteryLevel.set(20);
    settle();
    EXPECT_NE(part("batteryText")->property("color"), red);
    EXPECT_EQ(text("batteryText"), "20%");
}

TEST_F(SettingsTabViewTest, TheNotificationRowFollowsThePermission) {
    answerStatus(AuthorizationStatus::notDetermined);
    EXPECT_TRUE(shows("requestPermission"));
    const auto before = on.notificationCenter.authorizationQueries.size();
    click("requestPermission");
    ASSERT_EQ(on.notificationCenter.authorizationQueries.size(), before + 1);
    on.notificationCenter.authorizationQueries.back()(false, std::nullopt);
    settle();
    answerStatus(AuthorizationStatus::denied);
    EXPECT_FALSE(shows("requestPermission"));
    click("openNotificationSettings");
    EXPECT_EQ(on.workspace.panes.size(), 1u);
    open(3);
    open(0);
    answerStatus(AuthorizationStatus::authorized);
    EXPECT_TRUE(shows("notificationsEnabled"));
    EXPECT_FALSE(shows("openNotificationSettings"));
}

TEST_F(SettingsTabViewTest, AChangeOfTabEndsEditingThePort) {
    click("port");
    key(Qt::Key_A, Qt::ControlModifier);
    type("9002");
    state().selectedTab.set(3);
    settle();
    EXPECT_EQ(on.userDefaults.integer("port"), 9002);
    open(0);
    EXPECT_EQ(text("port"), "9002");
    EXPECT_TRUE(shows("restart"));
}

TEST_F(SettingsTabViewTest, ATabThatIsLeftWithoutEditingLeavesThePortAlone) {
    click("port");
    state().selectedTab.set(3);
    settle();
    EXPECT_FALSE(on.userDefaults.has("port"));
}

TEST_F(SettingsTabViewTest, ATabThatIsLeftAfterTheRestartDoesNotOfferItAgain) {
    edit("9000");
    click("restart");
    ASSERT_FALSE(shows("restart"));
    open(3);
    open(0);
    EXPECT_FALSE(shows("restart"));
}

TEST_F(SettingsTabViewTest, TheRestartStandsAfterThePort) {
    edit("9000");
    EXPECT_GE(part("restart")->mapToScene({}).x(), part("port")->mapToScene({part("port")->width(), 0}).x());
}

TEST_F(SettingsTabViewTest, AnUnknownPermissionHasNoRowUnderTheHeading) {
    answerStatus(static_cast<AuthorizationStatus>(42));
    EXPECT_FALSE(shows("requestPermission"));
    EXPECT_FALSE(shows("openNotificationSettings"));
    EXPECT_FALSE(shows("notificationsEnabled"));
    const auto texts = visibleTexts();
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "Notifications"), 2) << "in the sidebar and as heading";
    answerStatus(AuthorizationStatus::denied);
    state().settings.appears();
    settle();
    answerStatus(AuthorizationStatus::denied);
    EXPECT_TRUE(shows("openNotificationSettings"));
}

TEST_F(SettingsTabViewTest, TheKeyboardScrollsThePageAndThePageFollowsTheKeyboard) {
    openWindow().setMinimumSize({100, 100});
    openWindow().resize(850, 300);
    require("a low window", [] { return openWindow().height() == 300; });
    settle();
    QQuickItem* page = part("launchAtLogin")->parentItem();
    while (page && !page->property("contentY").isValid()) {
        page = page->parentItem();
    }
    ASSERT_NE(page, nullptr);
    EXPECT_TRUE(page->hasActiveFocus()) << "the page has the keyboard when the tab opens";
    key(Qt::Key_End);
    EXPECT_TRUE(page->property("atYEnd").toBool());
    key(Qt::Key_Home);
    EXPECT_TRUE(page->property("atYBeginning").toBool());
    part("launchAtLogin")->forceActiveFocus(Qt::TabFocusReason);
    settle();
    const double bottom = part("launchAtLogin")->mapToScene({0, part("launchAtLogin")->height()}).y();
    EXPECT_LE(bottom, 300);
}

class InfoViewTest : public ViewTest {};

TEST_F(InfoViewTest, ShowsTheFixedVersionAndTheIcon) {
    open(3);
    EXPECT_EQ(text("version"), "Version 1.0 (Build 1)");
    EXPECT_EQ(part("icon")->property("status").toInt(), 1) << "the picture is loaded";
    EXPECT_FALSE(part("icon")->property("asynchronous").toBool())
        << "a system may give it on the main thread alone";
}

TEST_F(InfoViewTest, TheLinkOpensTheProfileAndTheWalletCanBeCopied) {
    open(3);
    click("profile");
    EXPECT_EQ(on.workspace.opened.size(), 1u);
    QQuickItem* account = part("walletAccount");
    account->forceActiveFocus();
    key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(account->property("selectedText").toString(), account->property("text").toString());
}

} // namespace
} // namespace velloway::test
