#include "ui/ViewTest.h"

#include <QClipboard>

namespace velloway::test {
namespace {

constexpr const char* history =
    R"({"action":"sms_history","messages":[)"
    R"({"address":"+44 7700 900123","name":"Ada Winter","body":"Hello there","date":1699990000000,"type":1},)"
    R"({"address":"+44 7700 900123","body":"Hello back","date":1699990060000,"type":2},)"
    R"({"address":"Bank 24","body":"Your code is 1234","date":1699980000000,"type":1}]})";

class SmsViewTest : public ViewTest {
protected:
    SmsViewTest() {
        open(2);
        takeSent();
    }
    void fill() { receive(history); }
    void fillThreads(int count) {
        std::vector<SmsRecord> log;
        for (int i = 0; i < count; ++i) {
            log.push_back({"+4477009" + std::to_string(10000 + i), std::nullopt, "hello", 1.6999e12 + i, 1});
        }
        state().phone.phoneSmsLog.set(log);
        settle();
    }
    void openThread(std::size_t row) { click(all("thread").at(row)); }
};

TEST_F(SmsViewTest, AnEmptyLogShowsNoMessagesAndTheHint) {
    EXPECT_TRUE(shows("noMessages"));
    EXPECT_TRUE(shows("noChat"));
    EXPECT_FALSE(shows("composer"));
}

TEST_F(SmsViewTest, AnEmptyLogWithASearchTextShowsAnEmptyListAndNotTheEmptyState) {
    click("search");
    type("abc");
    EXPECT_FALSE(shows("noMessages"));
    EXPECT_TRUE(shows("threads"));
    EXPECT_THAT(all("thread"), IsEmpty());
}

TEST_F(SmsViewTest, ThreadsFromThePhoneAppearNewestFirst) {
    fill();
    const auto rows = all("thread");
    ASSERT_EQ(rows.size(), 2u);
    EXPECT_EQ(rows[0]->property("name").toString(), "Ada Winter");
    EXPECT_EQ(rows[0]->property("preview").toString(), "Hello back");
    EXPECT_EQ(rows[1]->property("name").toString(), "Bank 24");
    EXPECT_FALSE(shows("noMessages"));
}

TEST_F(SmsViewTest, TypingInTheSearchFieldNarrowsTheList) {
    fill();
    click("search");
    type("CODE");
    ASSERT_EQ(all("thread").size(), 1u);
    EXPECT_EQ(all("thread").at(0)->property("name").toString(), "Bank 24");
    EXPECT_FALSE(shows("newMessage"));
    click("clearSearch");
    EXPECT_EQ(all("thread").size(), 2u);
    EXPECT_EQ(text("search"), "");
    EXPECT_FALSE(shows("clearSearch"));
}

TEST_F(SmsViewTest, ANumberInTheSearchFieldOffersANewMessageToItAsTyped) {
    fill();
    click("search");
    type("+44 77");
    ASSERT_TRUE(shows("newMessage"));
    click("newMessage");
    EXPECT_EQ(state().sms.activeRecipient.get(), "+44 77");
    EXPECT_EQ(text("search"), "");
    EXPECT_FALSE(shows("newMessage"));
    EXPECT_EQ(text("chatName"), "+44 77");
    EXPECT_FALSE(shows("chatAddress"));
    EXPECT_TRUE(shows("newConversation"));
}

TEST_F(SmsViewTest, PressingAThreadOpensItsChat) {
    fill();
    openThread(0);
    EXPECT_EQ(text("chatName"), "Ada Winter");
    EXPECT_EQ(text("chatAddress"), "+44 7700 900123");
    EXPECT_EQ(part("messages")->property("count").toInt(), 2);
    EXPECT_TRUE(all("thread").at(0)->property("isActive").toBool());
    EXPECT_FALSE(all("thread").at(1)->property("isActive").toBool());
    EXPECT_FALSE(shows("noChat"));
}

TEST_F(SmsViewTest, ReturnOpensTheThreadThatTheKeyboardIsOn) {
    fill();
    part("threads")->forceActiveFocus();
    key(Qt::Key_Return);
    EXPECT_EQ(text("chatName"), "Ada Winter");
}

TEST_F(SmsViewTest, TheSearchTextStaysWhenAThreadIsOpened) {
    fill();
    click("search");
    type("bank");
    openThread(0);
    EXPECT_EQ(text("search"), "bank");
    EXPECT_EQ(text("chatName"), "Bank 24");
}

TEST_F(SmsViewTest, ReturnInTheComposerSendsAndShowsTheBubbleAtOnce) {
    fill();
    openThread(0);
    takeSent();
    click("composer");
    type("On my way");
    key(Qt::Key_Return);
    EXPECT_THAT(takeSent(),
                ElementsAre(R"({"action":"send_sms","number":"447700900123","body":"On my way","simSlot":0})"));
    EXPECT_EQ(text("composer"), "");
    EXPECT_EQ(part("messages")->property("count").toInt(), 3);
    EXPECT_EQ(all("thread").at(0)->property("preview").toString(), "On my way");
    EXPECT_TRUE(all("thread").at(0)->property("isActive").toBool());
}

TEST_F(SmsViewTest, TheButtonSendsAndIsDisabledWithoutAText) {
    fill();
    openThread(1);
    EXPECT_FALSE(part("send")->isEnabled());
    click("composer");
    type(" ");
    EXPECT_TRUE(part("send")->isEnabled());
    click("send");
    EXPECT_THAT(takeSent(), Contains(R"({"action":"send_sms","number":"24","body":" ","simSlot":0})"));
    EXPECT_FALSE(part("send")->isEnabled());
}

TEST_F(SmsViewTest, ReturnWithNothingTypedSendsNothing) {
    fill();
    openThread(0);
    takeSent();
    click("composer");
    key(Qt::Key_Return);
    EXPECT_THAT(takeSent(), IsEmpty());
}

TEST_F(SmsViewTest, AHistoryWithoutTheSentMessageTakesItsBubbleAway) {
    fill();
    openThread(0);
    click("composer");
    type("x");
    key(Qt::Key_Return);
    ASSERT_EQ(part("messages")->property("count").toInt(), 3);
    fill();
    EXPECT_EQ(part("messages")->property("count").toInt(), 2);
}

TEST_F(SmsViewTest, WhenTheNewestSpellingDiffersTheHighlightGoesAndTheMessagesStay) {
    fill();
    openThread(0);
    receive(R"({"action":"sms_history","messages":[)"
            R"({"address":"+44 7700 900123","name":"Ada Winter","body":"a","date":1699990000000,"type":1},)"
            R"({"address":"07700900123","body":"b","date":1699990060000,"type":1}]})");
    ASSERT_EQ(all("thread").size(), 1u);
    EXPECT_FALSE(all("thread").at(0)->property("isActive").toBool());
    EXPECT_EQ(text("chatName"), "+44 7700 900123");
    EXPECT_EQ(part("messages")->property("count").toInt(), 2);
}

TEST_F(SmsViewTest, TheSimPickerStandsInForTheNoteAndItsChoiceIsSent) {
    fill();
    openThread(1);
    EXPECT_EQ(text("noSim"), "No SIM connected");
    EXPECT_FALSE(shows("simPicker"));
    receive(R"({"action":"sim_info","sims":[{"slot":1,"carrier":"Red"},{"slot":2,"carrier":"Blue"}]})");
    EXPECT_FALSE(shows("noSim"));
    ASSERT_TRUE(shows("simPicker"));
    EXPECT_EQ(part("simPicker")->property("displayText").toString(), "Red");
    part("simPicker")->forceActiveFocus();
    key(Qt::Key_Down);
    EXPECT_EQ(part("simPicker")->property("displayText").toString(), "Blue");
    EXPECT_EQ(state().phone.selectedSimSlot.get(), 2);
    click("composer");
    type("hi");
    key(Qt::Key_Return);
    EXPECT_THAT(takeSent(), Contains(R"({"action":"send_sms","number":"24","body":"hi","simSlot":2})"));
    receive(R"({"action":"sim_info","sims":[{"slot":1,"carrier":"Red"},{"slot":2,"carrier":"Blue"},)"
            R"({"slot":3,"carrier":"Green"}]})");
    EXPECT_EQ(part("simPicker")->property("displayText").toString(), "Red");
}

TEST_F(SmsViewTest, RefreshAsksForTheMessagesAloneAndAppearingForBothLogs) {
    click("refresh");
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"get_sms_history"})"));
    open(3);
    takeSent();
    open(2);
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"get_sms_history"})", R"({"action":"get_call_history"})"));
}

TEST_F(SmsViewTest, WhatWasTypedOutlivesAChangeOfTab) {
    fill();
    click("search");
    type("ada");
    openThread(0);
    click("composer");
    type("half a sent");
    open(3);
    open(2);
    EXPECT_EQ(text("search"), "ada");
    EXPECT_EQ(text("composer"), "half a sent");
    EXPECT_EQ(text("chatName"), "Ada Winter");
}

TEST_F(SmsViewTest, AChatOpensAtItsEndAndFollowsANewMessage) {
    std::vector<SmsRecord> log;
    for (int i = 0; i < 300; ++i) {
        log.push_back({"1", std::nullopt, "message " + std::to_string(i), 1.6999e12 + i * 60000, 1});
    }
    state().phone.phoneSmsLog.set(log);
    settle();
    openThread(0);
    QQuickItem* list = part("messages");
    EXPECT_TRUE(wait([&] { return list->property("atYEnd").toBool(); }));
    EXPECT_LT(all("bubble").size(), 60u) << "only what is in sight is built";
    click("composer");
    type("one more");
    key(Qt::Key_Return);
    EXPECT_TRUE(
        wait([&] { return list->property("count").toInt() == 301 && list->property("atYEnd").toBool(); }));
}

TEST_F(SmsViewTest, TheTextOfABubbleCanBeSelectedWhole) {
    fill();
    openThread(0);
    std::vector<QQuickItem*> bodies = all("body");
    ASSERT_EQ(bodies.size(), 2u);
    bodies[0]->forceActiveFocus();
    key(Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(bodies[0]->property("selectedText").toString(), bodies[0]->property("text").toString());
}

TEST_F(SmsViewTest, ReturnOnTheNewMessageRowWritesToTheTypedNumberAndNotToAThread) {
    fill();
    click("search");
    type("+44 77");
    key(Qt::Key_Down);
    ASSERT_TRUE(part("newMessage")->hasActiveFocus());
    key(Qt::Key_Return);
    EXPECT_EQ(state().sms.activeRecipient.get(), "+44 77");
    EXPECT_EQ(text("chatName"), "+44 77");
}

TEST_F(SmsViewTest, TheNewMessageRowStaysInSightAboveManyThreads) {
    fillThreads(301);
    click("search");
    type("77");
    ASSERT_EQ(part("threads")->property("count").toInt(), 301);
    const QQuickItem* row = part("newMessage");
    EXPECT_GE(row->mapToScene({}).y(), part("search")->mapToScene({0, part("search")->height()}).y());
    EXPECT_LE(row->mapToScene({0, row->height()}).y(), all("thread").at(0)->mapToScene({}).y());
    click("newMessage");
    EXPECT_EQ(state().sms.activeRecipient.get(), "77");
}

TEST_F(SmsViewTest, AnotherChatIsShownAtItsEndAtOnce) {
    std::vector<SmsRecord> log;
    for (int i = 0; i < 400; ++i) {
        log.push_back(
            {i % 2 == 0 ? "1" : "2", std::nullopt, "message " + std::to_string(i), 1.6999e12 + i * 60000, 1});
    }
    log.push_back({"2", std::nullopt, "the last", 1.7e12, 1});
    state().phone.phoneSmsLog.set(log);
    state().sms.activeRecipient.set("1");
    settle();
    QQuickItem* list = part("messages");
    ASSERT_TRUE(wait([&] { return list->property("atYEnd").toBool(); }));
    QTest::qWait(300);
    state().sms.activeRecipient.set("2");
    require("the other chat", [&] { return list->property("count").toInt() == 201; });
    bool isDrawn = false;
    QObject::connect(&openWindow(), &QQuickWindow::frameSwapped, list, [&] { isDrawn = true; });
    openWindow().update();
    require("a frame", [&] { return isDrawn; });
    EXPECT_TRUE(list->property("atYEnd").toBool());
}

TEST_F(SmsViewTest, TheTabOpensOnTheSearchAndAChatOnItsComposer) {
    EXPECT_TRUE(part("search")->hasActiveFocus());
    fill();
    openThread(1);
    EXPECT_TRUE(part("composer")->hasActiveFocus());
    openThread(0);
    EXPECT_TRUE(part("composer")->hasActiveFocus());
    open(3);
    open(2);
    EXPECT_TRUE(part("composer")->hasActiveFocus());
}

TEST_F(SmsViewTest, TheKeyboardGoesFromTheSearchIntoTheListAndBack) {
    fill();
    for (const Qt::Key down : {Qt::Key_Down, Qt::Key_Escape}) {
        part("search")->forceActiveFocus();
        key(down);
        EXPECT_TRUE(part("threads")->hasActiveFocus() || part("threads")->property("activeFocus").toBool());
        key(Qt::Key_Up);
        EXPECT_TRUE(part("search")->hasActiveFocus());
    }
    openThread(0);
    for (const char* from : {"composer", "sidebar"}) {
        part(from)->forceActiveFocus();
        key(Qt::Key_F, Qt::ControlModifier);
        EXPECT_TRUE(part("search")->hasActiveFocus()) << from;
    }
}

TEST_F(SmsViewTest, PageAndEndKeysGoThroughTheThreads) {
    fillThreads(100);
    QQuickItem* list = part("threads");
    list->forceActiveFocus();
    const auto current = [&] { return list->property("currentIndex").toInt(); };
    key(Qt::Key_End);
    EXPECT_EQ(current(), 99);
    EXPECT_TRUE(list->property("atYEnd").toBool());
    key(Qt::Key_PageUp);
    EXPECT_LT(current(), 97);
    EXPECT_GT(current(), 80);
    key(Qt::Key_Home);
    EXPECT_EQ(current(), 0);
    EXPECT_TRUE(list->property("atYBeginning").toBool());
    const int before = current();
    key(Qt::Key_PageDown);
    EXPECT_GT(current(), before + 2);
}

TEST_F(SmsViewTest, PageAndEndKeysScrollTheMessages) {
    std::vector<SmsRecord> log;
    for (int i = 0; i < 200; ++i) {
        log.push_back({"1", std::nullopt, "message " + std::to_string(i), 1.6999e12 + i * 60000, 1});
    }
    state().phone.phoneSmsLog.set(log);
    state().sms.activeRecipient.set("1");
    settle();
    QQuickItem* list = part("messages");
    require("the end", [&] { return list->property("atYEnd").toBool(); });
    list->forceActiveFocus();
    key(Qt::Key_Home);
    EXPECT_TRUE(list->property("atYBeginning").toBool());
    key(Qt::Key_PageDown);
    EXPECT_FALSE(list->property("atYBeginning").toBool());
    key(Qt::Key_End);
    EXPECT_TRUE(wait([&] { return list->property("atYEnd").toBool(); }));
}

TEST_F(SmsViewTest, TheRowOfTheKeyboardHasARingAndNotTheColourOfThePointer) {
    fill();
    QTest::mouseMove(&openWindow(), {1, 1});
    part("threads")->forceActiveFocus();
    settle();
    EXPECT_EQ(all("thread").at(0)->property("color").value<QColor>().alpha(), 0);
    EXPECT_TRUE(all("thread").at(0)->findChild<QQuickItem*>("focusRing")->isVisible());
    EXPECT_FALSE(all("thread").at(1)->findChild<QQuickItem*>("focusRing")->isVisible());
}

TEST_F(SmsViewTest, TheComposerShowsThatItsTextHasLineBreaks) {
    fill();
    openThread(0);
    state().sms.chatText.set("one line");
    settle();
    EXPECT_FALSE(shows("lineBreaks"));
    state().sms.chatText.set("one\ntwo");
    settle();
    EXPECT_TRUE(shows("lineBreaks"));
}

TEST_F(SmsViewTest, CopyingALongMessageCopiesAllOfIt) {
    const std::string body(100'000, 'w');
    state().phone.phoneSmsLog.set({{"1", std::nullopt, body, 1.7e12, 1}});
    state().sms.activeRecipient.set("1");
    settle();
    QQuickItem* shown = part("body");
    EXPECT_LT(shown->property("length").toInt(), 10'000) << "only the head is laid out";
    shown->forceActiveFocus();
    key(Qt::Key_A, Qt::ControlModifier);
    key(Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text().toStdString(), body);
}

TEST_F(SmsViewTest, TheComposerHasItsSizesAndItsFaintOutline) {
    fill();
    openThread(0);
    EXPECT_EQ(part("send")->property("symbolSize").toInt(), 26);
    click("search");
    const QColor outline = part("composer")->property("outline").value<QColor>();
    EXPECT_NEAR(outline.alphaF(), 0.2, 0.01);
    EXPECT_EQ(outline.rgb(), part("noSim")->property("color").value<QColor>().rgb());
}

} // namespace
} // namespace velloway::test
