#include "ui/ViewTest.h"

#include <tuple>

namespace velloway::test {
namespace {

class CallsViewTest : public ViewTest {
protected:
    CallsViewTest() {
        open(4);
        takeSent();
    }
};

TEST_F(CallsViewTest, EveryButtonOfThePadAppendsItsDigit) {
    for (const DialButton& button : CallsModel::dialButtons) {
        click(("dial" + std::string(button.digit)).c_str());
    }
    EXPECT_EQ(text("number"), "123456789*0#");
}

TEST_F(CallsViewTest, KeysAppendDigitsStarAndHashAndPassOverTheRest) {
    type("1*#a+ 9");
    EXPECT_EQ(text("number"), "1*#9");
}

TEST_F(CallsViewTest, AHeldKeyRepeats) {
    holdKey(Qt::Key_5, "5", 3);
    EXPECT_EQ(text("number"), "5555");
}

TEST_F(CallsViewTest, BackspaceAndDeleteBothTakeTheLastDigit) {
    type("123");
    key(Qt::Key_Backspace);
    EXPECT_EQ(text("number"), "12");
    key(Qt::Key_Delete);
    EXPECT_EQ(text("number"), "1");
    key(Qt::Key_Delete);
    key(Qt::Key_Delete);
    EXPECT_EQ(text("number"), " ");
}

TEST_F(CallsViewTest, DeleteOnAnEmptyNumberIsHandled) {
    QKeyEvent press(QEvent::KeyPress, Qt::Key_Backspace, Qt::NoModifier);
    QGuiApplication::sendEvent(&openWindow(), &press);
    EXPECT_TRUE(press.isAccepted());
}

TEST_F(CallsViewTest, LettersAndPlusArePassedOn) {
    for (const char* character : {"a", "+"}) {
        QKeyEvent press(QEvent::KeyPress, *character == 'a' ? Qt::Key_A : Qt::Key_Plus, Qt::NoModifier,
                        character);
        QGuiApplication::sendEvent(&openWindow(), &press);
        EXPECT_FALSE(press.isAccepted()) << character;
    }
}

TEST_F(CallsViewTest, TheDeleteButtonShowsOnlyWithANumber) {
    EXPECT_EQ(part("delete")->opacity(), 0);
    type("12");
    EXPECT_EQ(part("delete")->opacity(), 1);
    click("delete");
    EXPECT_EQ(text("number"), "1");
}

TEST_F(CallsViewTest, ReturnDialsAndKeepsTheNumber) {
    type("16216");
    key(Qt::Key_Return);
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"make_call","number":"16216","simSlot":0})"));
    EXPECT_EQ(text("number"), "16216");
    EXPECT_TRUE(wait([] { return panel() != nullptr; }));
}

TEST_F(CallsViewTest, ReturnWithoutANumberDoesNothing) {
    key(Qt::Key_Return);
    EXPECT_THAT(takeSent(), IsEmpty());
    EXPECT_EQ(panel(), nullptr);
}

TEST_F(CallsViewTest, TheGreenButtonDialsAndIsDisabledWithoutANumber) {
    EXPECT_FALSE(part("call")->isEnabled());
    type("7");
    EXPECT_TRUE(part("call")->isEnabled());
    click("call");
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"make_call","number":"7","simSlot":0})"));
}

TEST_F(CallsViewTest, KeysStillReachThePadAfterItsButtonsWereClicked) {
    click("dial1");
    click("call");
    type("2");
    EXPECT_EQ(text("number"), "12");
}

TEST_F(CallsViewTest, ThePickerShowsOnlyWithTwoSimsAndStandsForSlotsZeroAndOne) {
    EXPECT_FALSE(shows("simSegments"));
    receive(R"({"action":"sim_info","sims":[{"slot":1,"carrier":"Red"}]})");
    EXPECT_FALSE(shows("simSegments"));
    EXPECT_EQ(state().phone.selectedSimSlot.get(), 1);
    receive(R"({"action":"sim_info","sims":[{"slot":1,"carrier":"Red"},{"slot":2,"carrier":"Blue"}]})");
    ASSERT_TRUE(shows("simSegments"));
    click("segment0");
    type("9");
    key(Qt::Key_Return);
    click("segment1");
    click("call");
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"make_call","number":"9","simSlot":0})",
                                        R"({"action":"make_call","number":"9","simSlot":1})"));
}

TEST_F(CallsViewTest, AnEmptyLogShowsOneLine) {
    EXPECT_EQ(text("noRecentCalls"), "No recent calls");
}

TEST_F(CallsViewTest, ARowDialsItsNumberInPlaceOfTheTypedOne) {
    receive(R"({"action":"call_history","calls":[)"
            R"({"number":"16216","name":"Service","date":1699990000000,"duration":3,"type":3},)"
            R"({"number":"5","date":1699980000000,"duration":3,"type":5},)"
            R"({"number":"6","date":1699970000000,"duration":3,"type":2}]})");
    EXPECT_FALSE(shows("noRecentCalls"));
    const auto rows = all("recentCall");
    ASSERT_EQ(rows.size(), 3u);
    EXPECT_EQ(rows[0]->property("symbol").toString(), "phone.arrow.down.left");
    EXPECT_EQ(rows[0]->property("colorRole").toString(), "red");
    EXPECT_EQ(rows[1]->property("symbol").toString(), "phone.arrow.down.left");
    EXPECT_EQ(rows[1]->property("colorRole").toString(), "primary");
    EXPECT_EQ(rows[2]->property("symbol").toString(), "phone.arrow.up.right");
    type("99");
    click(rows[0]);
    EXPECT_EQ(text("number"), "16216");
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"make_call","number":"16216","simSlot":0})"));
}

TEST_F(CallsViewTest, TenCallsOfTheSameMomentAreTenRows) {
    std::vector<CallRecord> log(10, CallRecord{"1", std::nullopt, 1.69999e12, 0, 1});
    state().phone.phoneCallLog.set(log);
    settle();
    EXPECT_EQ(part("recentCalls")->property("count").toInt(), 10);
}

TEST_F(CallsViewTest, StarAndHashAreTakenWithAnyModifier) {
    for (const auto& [key, modifier, character] :
         {std::tuple{Qt::Key_NumberSign, Qt::GroupSwitchModifier, "#"},
          std::tuple{Qt::Key_Asterisk, Qt::AltModifier, "*"}, std::tuple{Qt::Key_3, Qt::AltModifier, "3"}}) {
        QKeyEvent press(QEvent::KeyPress, key, modifier, character);
        QGuiApplication::sendEvent(&openWindow(), &press);
        EXPECT_TRUE(press.isAccepted()) << character;
    }
    settle();
    EXPECT_EQ(text("number"), "#*3");
}

TEST_F(CallsViewTest, TheHeadingOfTheRecentCallsIsAHeadlineWithEqualRoomAround) {
    const QQuickItem* title = part("recentCallsTitle");
    const QQuickItem* list = part("recentCalls");
    EXPECT_EQ(title->y(), 20);
    EXPECT_EQ(list->y() - title->y() - title->height(), 20);
    const int headline = fontSize("recentCallsTitle");
    open(2);
    state().sms.activeRecipient.set("1");
    settle();
    EXPECT_EQ(fontSize("chatName"), headline);
}

TEST_F(CallsViewTest, TheArrowKeysChooseTheSim) {
    receive(R"({"action":"sim_info","sims":[{"slot":0,"carrier":"Red"},{"slot":1,"carrier":"Blue"}]})");
    QQuickItem* picker = part("simSegments");
    EXPECT_FALSE(picker->findChild<QQuickItem*>("focusRing")->isVisible());
    picker->forceActiveFocus();
    settle();
    EXPECT_TRUE(picker->findChild<QQuickItem*>("focusRing")->isVisible());
    key(Qt::Key_Right);
    EXPECT_EQ(state().phone.selectedSimSlot.get(), 1);
    key(Qt::Key_Left);
    EXPECT_EQ(state().phone.selectedSimSlot.get(), 0);
}

} // namespace
} // namespace velloway::test
