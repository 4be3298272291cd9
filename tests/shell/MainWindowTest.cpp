#include "app/Program.h"
#include "fakes/FakePlatform.h"
#include "tabs/SettingsView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velloway::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

class MainWindowTest : public testing::Test {
protected:
    MainWindowTest() {
        program.delegate().applicationDidFinishLaunching();
        on.drain();
        on.journal.take();
    }
    SettingsView& view() { return dynamic_cast<SettingsView&>(*on.windows.mainWindow->content); }

    FakePlatform on;
    Program program{on.platform(), [] {}};
};

TEST_F(MainWindowTest, ShowsTheTabsOnTheTabThatWasAskedFor) {
    program.delegate().showSettings(5);
    EXPECT_EQ(shownTab(view().selectedTab.get()), tabIndex::fileDrop);
    EXPECT_EQ(view().history.get(), &program.historyStore());
}

TEST_F(MainWindowTest, AnOpenWindowFollowsToAnotherTab) {
    program.delegate().showSettings(5);
    const SettingsView* before = &view();
    program.delegate().showSettings(2);
    EXPECT_EQ(&view(), before);
    EXPECT_EQ(shownTab(view().selectedTab.get()), tabIndex::sms);
}

TEST_F(MainWindowTest, AClosedWindowComesBackTheSameAndWhereItWas) {
    program.delegate().showSettings(5);
    const auto window = on.windows.mainWindow;
    on.windows.closeMainWindow();
    EXPECT_EQ(on.application.policy, ActivationPolicy::accessory);
    on.journal.take();
    program.delegate().showSettings(0);
    EXPECT_EQ(on.windows.mainWindow, window);
    EXPECT_EQ(on.windows.mainProperties.size(), 1u);
    EXPECT_THAT(on.journal.entries(),
                ElementsAre("policy regular", "main window makeKeyAndOrderFront", "activate"));
}

TEST_F(MainWindowTest, ComingToTheFrontReadsTheAccessibilityForTheOpenView) {
    program.delegate().applicationDidBecomeActive();
    on.accessibility.trusted = false;
    program.delegate().showSettings(7);
    EXPECT_FALSE(view().remote.isAccessibilityEnabled.get());
    on.accessibility.trusted = true;
    program.delegate().applicationDidBecomeActive();
    EXPECT_TRUE(view().remote.isAccessibilityEnabled.get());
}

TEST_F(MainWindowTest, APhoneAddressFillsTheDialPadOrTheComposerAndSendsNothing) {
    const auto phone =
        std::make_shared<FakeConnection>(Endpoint{.host = "10.0.0.1", .description = "10.0.0.1:1"});
    on.network.listener().connect(phone);
    phone->report(ConnectionState::ready);
    on.drain();
    phone->sent.clear();
    program.delegate().applicationOpenLinks({"tel:+49-151-5551074"});
    EXPECT_EQ(shownTab(view().selectedTab.get()), tabIndex::call);
    EXPECT_EQ(view().calls.dialpadNumber.get(), "+491515551074");
    program.delegate().applicationOpenLinks({"sms:5551?body=On%20my%20way"});
    EXPECT_EQ(shownTab(view().selectedTab.get()), tabIndex::sms);
    EXPECT_EQ(view().sms.activeRecipient.get(), "5551");
    EXPECT_EQ(view().sms.chatText.get(), "On my way");
    program.delegate().applicationOpenLinks({"sms:5552"});
    EXPECT_EQ(view().sms.activeRecipient.get(), "5552");
    EXPECT_EQ(view().sms.chatText.get(), "On my way") << "an address without a text leaves what is there";
    on.log.take();
    program.delegate().applicationOpenLinks({"https://example.invalid/", "tel:none"});
    EXPECT_EQ(on.log.take(),
              (std::vector<std::string>{"[AppDelegate] Not an address of a phone: https://example.invalid/",
                                        "[AppDelegate] Not an address of a phone: tel:none"}));
    EXPECT_EQ(shownTab(view().selectedTab.get()), tabIndex::sms);
    on.drain();
    EXPECT_TRUE(phone->sent.empty()) << "nothing is dialled or sent";
    phone->report(ConnectionState::cancelled);
    on.drain();
}

TEST_F(MainWindowTest, EachOfSeveralAddressesIsOpened) {
    program.delegate().applicationOpenLinks({"tel:1", "sms:5"});
    EXPECT_EQ(view().calls.dialpadNumber.get(), "1");
    EXPECT_EQ(view().sms.activeRecipient.get(), "5");
    EXPECT_EQ(shownTab(view().selectedTab.get()), tabIndex::sms);
}

TEST_F(MainWindowTest, TheLoginSwitchReachesTheSystem) {
    program.delegate().showSettings(0);
    view().settings.launchAtLogin.set(true);
    EXPECT_EQ(on.loginItem.current, LoginItemStatus::enabled);
}

TEST_F(MainWindowTest, TheLocalAddressIsThatOfTheHost) {
    on.host.interfaces = {{{.name = "en0", .flags = 0x41, .addressFamily = 2, .numericAddress = "10.1.2.3"}}};
    program.delegate().showSettings(0);
    EXPECT_EQ(view().settings.localIP.get(), "10.1.2.3");
}

TEST_F(MainWindowTest, ARingingCallOpensAPanelAndLeavesTheApplicationsFaceAlone) {
    program.historyStore().incomingCallInfo.set(IncomingCallInfo{.number = "123"});
    on.drain();
    ASSERT_EQ(on.windows.panels.size(), 1u);
    EXPECT_THAT(on.journal.entries(), Not(Contains("policy regular")));
    program.historyStore().incomingCallInfo.set(std::nullopt);
    on.drain();
    EXPECT_FALSE(on.windows.panels[0]->visible);
}

} // namespace
} // namespace velloway::test
