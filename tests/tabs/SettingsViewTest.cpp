#include "tabs/TabHarness.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* smsRequest = R"({"action":"get_sms_history"})";
constexpr const char* callRequest = R"({"action":"get_call_history"})";

class SettingsViewTest : public testing::Test, protected TabHarness {};

TEST_F(SettingsViewTest, StartsWithItsInitialValues) {
    EXPECT_EQ(view->history, link.store);
    EXPECT_EQ(view->settings.port.get(), 8765);
    EXPECT_FALSE(view->settings.launchAtLogin.get());
    EXPECT_FALSE(view->settings.serverRestartNeeded.get());
    EXPECT_EQ(view->settings.notifAuthStatus.get(), AuthorizationStatus::notDetermined);
    EXPECT_TRUE(view->remote.isAccessibilityEnabled.get());
    EXPECT_THAT(view->sms.selectedRecipients.get(), IsEmpty());
    EXPECT_EQ(view->sms.smsBody.get(), "");
    EXPECT_EQ(view->phone.selectedSimSlot.get(), 0);
    EXPECT_EQ(view->sms.smsStatus.get(), "");
    EXPECT_EQ(view->sms.smsStatusColor.get(), ColorRole::secondary);
    EXPECT_EQ(view->notifications.replyingTo.get(), std::nullopt);
    EXPECT_EQ(view->notifications.replyText.get(), "");
    EXPECT_EQ(view->sms.contactQuery.get(), "");
    EXPECT_FALSE(view->sms.looksNumeric.get());
    EXPECT_FALSE(view->sms.showSuggestions.get());
    EXPECT_EQ(view->columnVisibility.get(), ColumnVisibility::all);
    EXPECT_THAT(view->phone.phoneSmsLog.get(), IsEmpty());
    EXPECT_THAT(view->phone.phoneCallLog.get(), IsEmpty());
    EXPECT_EQ(view->selectedTab.get(), 0);
    EXPECT_EQ(view->sms.activeRecipient.get(), std::nullopt);
    EXPECT_EQ(view->sms.chatText.get(), "");
    EXPECT_EQ(view->calls.dialpadNumber.get(), "");
    EXPECT_FALSE(view->calls.isSpeakerOn.get());
    EXPECT_FALSE(view->calls.isMuted.get());
    EXPECT_FALSE(view->calls.timer.get().has_value());
    EXPECT_EQ(view->calls.dialButtons.size(), 12u);
}

TEST_F(SettingsViewTest, ReadsTheLoginItemAndTheAccessibilityWhenMadeWithoutAPrompt) {
    isLoginEnabled = true;
    on.accessibility.trusted = false;
    makeView();
    EXPECT_TRUE(view->settings.launchAtLogin.get());
    EXPECT_FALSE(view->remote.isAccessibilityEnabled.get());
    EXPECT_EQ(on.accessibility.prompts, 0);
    EXPECT_THAT(loginChanges, IsEmpty());
}

TEST_F(SettingsViewTest, TheAppearanceAsksForBothHistoriesThenReadsThePermissions) {
    on.accessibility.trusted = false;
    on.journal.take();
    view->viewAppears();
    EXPECT_FALSE(view->remote.isAccessibilityEnabled.get());
    EXPECT_THAT(on.journal.entries(), ElementsAre("notification settings"));
    EXPECT_THAT(takeSent(), ElementsAre(smsRequest, callRequest));
    EXPECT_EQ(on.accessibility.prompts, 0);
}

TEST_F(SettingsViewTest, TheHistoriesAreAskedForBeforeThePermissionsAreRead) {
    on.accessibility.trusted = false;
    std::vector<std::size_t> requests;
    const Subscription seen = view->remote.isAccessibilityEnabled.observe([&](bool) {
        requests.push_back(on.server.pending());
        EXPECT_THAT(on.notificationCenter.statusQueries, IsEmpty());
    });
    view->viewAppears();
    EXPECT_THAT(requests, ElementsAre(2u));
}

TEST_F(SettingsViewTest, TheSmsTabAsksForBothHistoriesAtEachAppearance) {
    view->tabAppears(2);
    view->tabAppears(2);
    EXPECT_THAT(takeSent(), ElementsAre(smsRequest, callRequest, smsRequest, callRequest));
}

TEST_F(SettingsViewTest, TheSettingsTabReadsTheNotificationPermissionAtEachAppearance) {
    view->tabAppears(0);
    EXPECT_EQ(on.notificationCenter.statusQueries.size(), 1u);
    EXPECT_THAT(takeSent(), IsEmpty());
}

TEST_F(SettingsViewTest, TheOtherTabsAskForNothing) {
    for (const int tab : {1, 3, 4, 5, 6, 7, 99}) {
        view->tabAppears(tab);
    }
    EXPECT_THAT(takeSent(), IsEmpty());
    EXPECT_THAT(on.notificationCenter.statusQueries, IsEmpty());
}

TEST_F(SettingsViewTest, TheNotificationStatusArrivesOnTheMainQueue) {
    view->settings.refreshNotifStatus();
    on.notificationCenter.answerStatus(AuthorizationStatus::denied);
    EXPECT_EQ(view->settings.notifAuthStatus.get(), AuthorizationStatus::notDetermined);
    on.drain();
    EXPECT_EQ(view->settings.notifAuthStatus.get(), AuthorizationStatus::denied);
}

TEST_F(SettingsViewTest, AnAnswerAfterTheViewHasGoneDoesNothing) {
    view->settings.refreshNotifStatus();
    view->settings.requestNotificationPermission();
    view.reset();
    on.notificationCenter.answerStatus(AuthorizationStatus::denied);
    on.notificationCenter.answerAuthorization(true);
    on.drain();
    EXPECT_THAT(on.notificationCenter.statusQueries, IsEmpty());
}

TEST_F(SettingsViewTest, TheHistoriesReplaceTheLogs) {
    view->phone.phoneSmsLog.set({{.address = "old"}});
    link.notifications.post(AppNotification::smsHistoryUpdated, std::vector<SmsRecord>{{.address = "new"}});
    link.notifications.post(AppNotification::callHistoryUpdated, std::vector<CallRecord>{{.number = "5"}});
    EXPECT_THAT(view->phone.phoneSmsLog.get(), ElementsAre(SmsRecord{.address = "new"}));
    EXPECT_THAT(view->phone.phoneCallLog.get(), ElementsAre(CallRecord{.number = "5"}));
}

TEST_F(SettingsViewTest, AHistoryFromThePhoneReachesTheLogs) {
    link.receive(*phone,
                 R"({"action":"sms_history","messages":[{"address":"7","body":"hi","date":5,"type":1}]})");
    ASSERT_EQ(view->phone.phoneSmsLog.get().size(), 1u);
    EXPECT_EQ(view->phone.phoneSmsLog.get()[0].body, "hi");
}

TEST_F(SettingsViewTest, ObjectsOfAnotherTypeAreIgnored) {
    view->phone.phoneSmsLog.set({{.address = "old"}});
    view->phone.phoneCallLog.set({{.number = "old"}});
    view->calls.dialpadNumber.set("12");
    link.notifications.post(AppNotification::smsHistoryUpdated, std::vector<CallRecord>{});
    link.notifications.post(AppNotification::smsHistoryUpdated, std::string("x"));
    link.notifications.post(AppNotification::callHistoryUpdated, std::vector<SmsRecord>{});
    link.notifications.post(AppNotification::prepareActiveCall,
                            std::map<std::string, std::string>{{"number", "7"}});
    EXPECT_EQ(view->phone.phoneSmsLog.get().size(), 1u);
    EXPECT_EQ(view->phone.phoneCallLog.get().size(), 1u);
    EXPECT_EQ(view->calls.dialpadNumber.get(), "12");
}

TEST_F(SettingsViewTest, APlainNumberToPrepareGoesOnThePad) {
    link.notifications.post(AppNotification::prepareActiveCall, std::string("123"));
    EXPECT_EQ(view->calls.dialpadNumber.get(), "123");
}

TEST_F(SettingsViewTest, ComingToTheFrontReadsTheAccessibilityAgainWithoutAPrompt) {
    on.accessibility.trusted = false;
    view->applicationDidBecomeActive();
    EXPECT_FALSE(view->remote.isAccessibilityEnabled.get());
    on.accessibility.trusted = true;
    view->applicationDidBecomeActive();
    EXPECT_TRUE(view->remote.isAccessibilityEnabled.get());
    EXPECT_EQ(on.accessibility.prompts, 0);
    EXPECT_THAT(on.notificationCenter.statusQueries, IsEmpty()) << "the permission of the notifications is not";
    EXPECT_THAT(takeSent(), IsEmpty());
}

TEST_F(SettingsViewTest, ClearingOneListLeavesTheOthersAndThePasteboard) {
    const auto fill = [&] {
        store.add({.app = "a"});
        store.addClipboard("text");
        store.addFileTransfer({.fileName = "f"});
        on.pasteboard.content = "text";
    };
    using Sizes = std::array<std::size_t, 3>;
    const auto sizes = [&] {
        return Sizes{store.items.get().size(), store.clipboardHistory.get().size(),
                     store.fileTransfers.get().size()};
    };
    fill();
    view->notifications.clearNotifications();
    EXPECT_EQ(sizes(), (Sizes{0, 1, 1}));
    fill();
    view->clipboard.clearClipboard();
    EXPECT_EQ(on.pasteboard.content, "text");
    EXPECT_EQ(sizes(), (Sizes{1, 0, 2}));
    fill();
    view->fileDrop.clearFileTransfers();
    EXPECT_EQ(sizes(), (Sizes{2, 1, 0}));
}

TEST_F(SettingsViewTest, AFreshViewStartsWithEmptyLogsAndKeepsOnlyWhatIsStored) {
    view->phone.phoneSmsLog.set({{.address = "1"}});
    view->sms.chatText.set("draft");
    view->selectedTab.set(6);
    view->settings.port.set(9000);
    makeView();
    EXPECT_THAT(view->phone.phoneSmsLog.get(), IsEmpty());
    EXPECT_EQ(view->sms.chatText.get(), "");
    EXPECT_EQ(view->selectedTab.get(), 6);
    EXPECT_EQ(view->settings.port.get(), 9000);
}

// The chosen tab

TEST_F(SettingsViewTest, TheStoredTabIsShownFromTheStart) {
    on.userDefaults.setInteger("selectedSettingsTab", 99);
    makeView();
    EXPECT_EQ(view->selectedTab.get(), 99);
    EXPECT_EQ(shownTab(view->selectedTab.get()), tabIndex::call);
    EXPECT_EQ(selectedRow(view->selectedTab.get()), nullptr);
    view->selectedTab.set(1);
    EXPECT_EQ(on.userDefaults.integer("selectedSettingsTab"), 1);
}

TEST_F(SettingsViewTest, WritingTheStoredTabSwitchesTheOpenView) {
    int redraws = 0;
    const auto observer = view->selectedTab.observe([&](std::int64_t) { ++redraws; });
    on.userDefaults.setInteger("selectedSettingsTab", 5);
    EXPECT_EQ(view->selectedTab.get(), 5);
    EXPECT_EQ(shownTab(view->selectedTab.get()), tabIndex::fileDrop);
    EXPECT_EQ(redraws, 1);
}

TEST(TabTableTest, HasItsEightRows) {
    struct Expected {
        int index;
        std::string_view title, symbol;
    };
    const std::vector<Expected> expected{
        {4, "Call", "phone"},          {2, "SMS", "paperplane"},   {5, "File Drop", "arrow.down.doc"},
        {1, "Notifications", "clock"}, {7, "Remote", "command"},   {6, "Clipboard", "doc.on.clipboard"},
        {0, "Settings", "gearshape"},  {3, "Info", "info.circle"},
    };
    ASSERT_EQ(tabRows.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(tabRows[i].index, expected[i].index);
        EXPECT_EQ(tabRows[i].title, expected[i].title);
        EXPECT_EQ(tabRows[i].symbol, expected[i].symbol);
        EXPECT_EQ(shownTab(expected[i].index), expected[i].index);
        EXPECT_EQ(selectedRow(expected[i].index), &tabRows[i]);
    }
}

TEST(TabTableTest, IndicesOutsideTheTableShowTheCallsAndHighlightNothing) {
    for (const std::int64_t index : {-1, 8, 99}) {
        EXPECT_EQ(shownTab(index), tabIndex::call);
        EXPECT_EQ(selectedRow(index), nullptr);
    }
}

TEST(AdaptiveLabelStyleTest, ShowsTitlesAboveAWidthOf250) {
    EXPECT_FALSE(AdaptiveLabelStyle::forWidth(250).showLabels);
    EXPECT_TRUE(AdaptiveLabelStyle::forWidth(250.5).showLabels);
    EXPECT_TRUE(AdaptiveLabelStyle::forWidth(251).showLabels);
    EXPECT_FALSE(AdaptiveLabelStyle::forWidth(0).showLabels);
}

} // namespace
} // namespace velloway::test
