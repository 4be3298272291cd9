#include "ui/ViewTest.h"

namespace velloway::test {
namespace {

class NotificationsViewTest : public ViewTest {
protected:
    NotificationsViewTest() { open(1); }

    void add(const char* app, const char* title, const char* body) {
        program.historyStore().add({.app = app, .title = title, .body = body, .time = 1.7e9, .key = "k"});
        settle();
    }
    std::string idOf(std::size_t row) { return program.historyStore().items.get().at(row).id.text(); }
};

TEST_F(NotificationsViewTest, AnEmptyListSaysSoAndHasNothingToClear) {
    EXPECT_TRUE(shows("empty"));
    EXPECT_EQ(text("count"), "0 notifications");
    EXPECT_FALSE(part("clearAll")->isEnabled());
}

TEST_F(NotificationsViewTest, OneRowIsCountedAsOne) {
    add("Chat", "Ada", "Hello");
    EXPECT_FALSE(shows("empty"));
    EXPECT_EQ(text("count"), "1 notification");
    ASSERT_EQ(all("notification").size(), 1u);
    add("Chat", "Ada", "Again");
    EXPECT_EQ(text("count"), "2 notifications");
    EXPECT_EQ(all("notification").at(0)->property("body").toString(), "Again");
}

TEST_F(NotificationsViewTest, ARowWithoutAppAndTitleShowsAQuestionMark) {
    add("", "", "x");
    add("whatsApp", "", "x");
    EXPECT_EQ(all("notification").at(1)->property("letter").toString(), "?");
    EXPECT_EQ(all("notification").at(1)->property("app").toString(), "Notification");
    EXPECT_EQ(all("notification").at(0)->property("letter").toString(), "W");
}

TEST_F(NotificationsViewTest, AReplyIsTypedAndSentUnderTheIdOfItsRow) {
    add("Chat", "Ada", "Hello");
    takeSent();
    click("reply");
    ASSERT_TRUE(shows("replyField"));
    EXPECT_TRUE(part("replyField")->hasActiveFocus());
    type("On my way");
    click("sendReply");
    EXPECT_THAT(takeSent(),
                ElementsAre(R"({"action":"reply","key":")" + idOf(0) + R"(","message":"On my way"})"));
    EXPECT_FALSE(shows("replyField"));
    EXPECT_EQ(all("notification").size(), 1u);
    click("reply");
    EXPECT_EQ(text("replyField"), "");
}

TEST_F(NotificationsViewTest, AnEmptyReplyIsNotRefused) {
    add("Chat", "Ada", "Hello");
    takeSent();
    click("reply");
    EXPECT_TRUE(part("sendReply")->isEnabled());
    click("sendReply");
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"reply","key":")" + idOf(0) + R"(","message":""})"));
}

TEST_F(NotificationsViewTest, ASecondReplyBoxClosesTheFirstAndTakesItsText) {
    add("Chat", "Ada", "Hello");
    add("Chat", "Bruno", "Hi");
    click(all("reply").at(0));
    type("half");
    EXPECT_EQ(all("reply").size(), 1u);
    click("reply");
    EXPECT_EQ(all("replyField").size(), 1u);
    EXPECT_EQ(state().notifications.replyingTo.get()->text(), idOf(1));
    EXPECT_EQ(text("replyField"), "half");
}

TEST_F(NotificationsViewTest, CancelClosesTheBoxAndKeepsTheText) {
    add("Chat", "Ada", "Hello");
    takeSent();
    click("reply");
    type("half");
    click("cancelReply");
    EXPECT_FALSE(shows("replyField"));
    EXPECT_THAT(takeSent(), IsEmpty());
    click("reply");
    EXPECT_EQ(text("replyField"), "half");
}

TEST_F(NotificationsViewTest, AnOpenBoxIsThereAgainWhenTheTabIsComeBackTo) {
    add("Chat", "Ada", "Hello");
    click("reply");
    type("half");
    open(3);
    open(1);
    EXPECT_EQ(text("replyField"), "half");
    EXPECT_FALSE(shows("reply"));
}

TEST_F(NotificationsViewTest, ClearAllTakesTheRowWithTheOpenBoxAway) {
    add("Chat", "Ada", "Hello");
    click("reply");
    click("clearAll");
    EXPECT_TRUE(shows("empty"));
    EXPECT_TRUE(state().notifications.replyingTo.get().has_value());
    add("Chat", "Bruno", "Hi");
    EXPECT_FALSE(shows("replyField"));
}

TEST_F(NotificationsViewTest, WhatIsTypedSurvivesANewRowAbove) {
    add("Chat", "Ada", "Hello");
    click("reply");
    QQuickItem* field = part("replyField");
    type("ab");
    add("Chat", "Bruno", "Hi");
    EXPECT_EQ(part("replyField"), field) << "the row is kept";
    type("c");
    EXPECT_EQ(text("replyField"), "abc");
}

TEST_F(NotificationsViewTest, TheTitleIsACalloutAndTheBodyACaption) {
    add("Chat", "Ada", "Hello");
    EXPECT_EQ(fontSize("title"), 12);
    EXPECT_EQ(fontSize("body"), 11);
}

TEST_F(NotificationsViewTest, InAWideWindowTheFooterStandsBelowTheRows) {
    add("Chat", "Ada", "Hello");
    openWindow().resize(1270, 550);
    require("a wide window", [] { return openWindow().width() == 1270; });
    settle();
    const QQuickItem* row = all("notification").at(0);
    const auto end = [](const QQuickItem* item) { return item->mapToScene({item->width(), 0}).x(); };
    EXPECT_GT(row->x(), 100);
    EXPECT_NEAR(part("count")->mapToScene({}).x(), row->mapToScene({}).x() + 16, 1);
    EXPECT_NEAR(end(part("clearAll")), end(row) - 12, 1);
}

TEST_F(NotificationsViewTest, AfterCancelTheKeyboardIsBackOnTheButton) {
    add("Chat", "Ada", "Hello");
    click("reply");
    key(Qt::Key_Escape);
    EXPECT_TRUE(wait([this] { return shows("reply") && part("reply")->hasActiveFocus(); }));
}

} // namespace
} // namespace velloway::test
