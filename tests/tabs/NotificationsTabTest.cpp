#include "tabs/TabHarness.h"
#include "tabs/notifications/NotificationsTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class NotificationsTabTest : public testing::Test, protected TabHarness {
protected:
    NotificationRow rowOf(NotifPayload payload) {
        store.items.set({std::move(payload)});
        return view->notifications.rows.get().at(0);
    }
};

TEST_F(NotificationsTabTest, TheFooterCounts) {
    EXPECT_EQ(view->notifications.footer(), (NotificationsFooter{"0 notifications", false}));
    store.add({.app = "a"});
    EXPECT_EQ(view->notifications.footer(), (NotificationsFooter{"1 notification", true}));
    store.add({.app = "b"});
    EXPECT_EQ(view->notifications.footer(), (NotificationsFooter{"2 notifications", true}));
}

TEST_F(NotificationsTabTest, RowsFollowTheStore) {
    int redraws = 0;
    const auto observer = view->notifications.rows.observe([&] { ++redraws; });
    store.add({.app = "first"});
    store.add({.app = "second"});
    EXPECT_EQ(redraws, 2);
    EXPECT_EQ(view->notifications.rows.get().at(0).app, "second");
    EXPECT_EQ(view->notifications.rows.get().at(0).id, store.items.get().at(0).id);
}

TEST_F(NotificationsTabTest, TheLetterIsTheFirstOfAppOrTitleInUpperCase) {
    EXPECT_EQ(rowOf({.app = "whatsApp", .title = "x"}).letter, "W");
    EXPECT_EQ(rowOf({.title = "émile"}).letter, "É");
    EXPECT_EQ(rowOf({.app = "👩‍👧 family"}).letter, "👩‍👧");
    EXPECT_EQ(rowOf({}).letter, "?");
}

TEST_F(NotificationsTabTest, ARecordWithoutTextsStillHasAHeader) {
    const NotificationRow row = rowOf({});
    EXPECT_EQ(row.app, "Notification");
    EXPECT_EQ(row.title, std::nullopt);
    EXPECT_EQ(row.body, std::nullopt);
}

TEST_F(NotificationsTabTest, ATitleThatIsAKnownNumberShowsTheName) {
    view->phone.phoneCallLog.set({{.number = "07700900123", .name = "Anna"}});
    EXPECT_EQ(rowOf({.title = "+44 7700 900123", .body = "hi"}).title, "Anna");
    EXPECT_EQ(rowOf({.title = "Some title"}).title, "Some title");
    EXPECT_EQ(rowOf({.body = "hi"}).body, "hi");
}

TEST_F(NotificationsTabTest, TheTimeHasADateUnlessItIsOfToday) {
    EXPECT_EQ(rowOf({.time = 1'700'000'000}).time, "03:43");
    EXPECT_EQ(rowOf({.time = 1'699'919'999}).time, "14/11/2023, 05:29");
}

// Replying

TEST_F(NotificationsTabTest, OneReplyBoxIsOpenAtATimeAndTheTextCarriesOver) {
    store.add({.app = "a"});
    store.add({.app = "b"});
    const Uuid newest = store.items.get().at(0).id;
    const Uuid oldest = store.items.get().at(1).id;
    EXPECT_FALSE(view->notifications.rows.get().at(0).isReplying);
    view->notifications.openReply(newest);
    view->notifications.replyText.set("begun");
    EXPECT_TRUE(view->notifications.rows.get().at(0).isReplying);
    view->notifications.openReply(oldest);
    EXPECT_FALSE(view->notifications.rows.get().at(0).isReplying);
    EXPECT_TRUE(view->notifications.rows.get().at(1).isReplying);
    EXPECT_EQ(view->notifications.replyText.get(), "begun");
}

TEST_F(NotificationsTabTest, AReplyGoesOutUnderTheRowsIdentityAndNotTheKey) {
    store.add({.app = "a", .key = "phone-key"});
    const Uuid id = store.items.get().at(0).id;
    view->notifications.openReply(id);
    view->notifications.replyText.set(" on my way ");
    view->notifications.sendReply(id);
    EXPECT_THAT(takeSent(),
                ElementsAre(R"({"action":"reply","key":")" + id.text() + R"(","message":" on my way "})"));
    EXPECT_EQ(view->notifications.replyingTo.get(), std::nullopt);
    EXPECT_EQ(view->notifications.replyText.get(), "");
    EXPECT_EQ(store.items.get().size(), 1u);
}

TEST_F(NotificationsTabTest, AReplyIsSentThenItsBoxClosesThenItsTextGoes) {
    store.add({.app = "a"});
    const Uuid id = store.items.get().at(0).id;
    view->notifications.openReply(id);
    view->notifications.replyText.set("on my way");
    std::vector<std::string> steps;
    const auto sentBefore = [this] { return on.server.pending() == 0 ? " before the message" : ""; };
    const Subscription box = view->notifications.replyingTo.observe(
        [&](const auto&) { steps.push_back(std::string("box") + sentBefore()); });
    const Subscription text = view->notifications.replyText.observe(
        [&](const auto&) { steps.push_back(std::string("text") + sentBefore()); });
    view->notifications.sendReply(id);
    EXPECT_THAT(steps, ElementsAre("box", "text"));
}

TEST_F(NotificationsTabTest, AnEmptyReplyIsSent) {
    store.add({.app = "a"});
    const Uuid id = store.items.get().at(0).id;
    view->notifications.sendReply(id);
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"reply","key":")" + id.text() + R"(","message":""})"));
}

TEST_F(NotificationsTabTest, CancellingKeepsTheText) {
    view->notifications.openReply(Uuid::random());
    view->notifications.replyText.set("begun");
    view->notifications.cancelReply();
    EXPECT_EQ(view->notifications.replyingTo.get(), std::nullopt);
    EXPECT_EQ(view->notifications.replyText.get(), "begun");
}

TEST_F(NotificationsTabTest, ClearingEmptiesTheStoreAndLeavesAStaleReplyTarget) {
    store.add({.app = "a"});
    const Uuid id = store.items.get().at(0).id;
    view->notifications.openReply(id);
    view->notifications.clearNotifications();
    EXPECT_THAT(view->notifications.rows.get(), IsEmpty());
    EXPECT_EQ(view->notifications.replyingTo.get(), id);
    store.add({.app = "b"});
    EXPECT_FALSE(view->notifications.rows.get().at(0).isReplying);
}

TEST(NotificationsTextsTest, AreExact) {
    EXPECT_EQ(textOf(notificationsTexts, "emptyTitle"), "No notifications yet");
    EXPECT_EQ(textOf(notificationsTexts, "emptyDescription"),
              "Notifications forwarded from your Android phone will appear here.");
    EXPECT_EQ(textOf(notificationsTexts, "clearAll"), "Clear All");
    EXPECT_EQ(textOf(notificationsTexts, "replyPlaceholder"), "Type reply...");
}

} // namespace
} // namespace velloway::test
