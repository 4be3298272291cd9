#include "tabs/TabHarness.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TextMap = std::map<std::string, std::string>;

class CallsTabTest : public testing::Test, protected TabHarness {
protected:
    KeyPressResult type(std::string characters, KeyPress::Phase phase = KeyPress::Phase::down) {
        return view->calls.pressKey({.phase = phase, .characters = std::move(characters)});
    }
    KeyPressResult press(KeyPress::Key key) { return view->calls.pressKey({.key = key}); }

    std::vector<AppNotificationObject> prepared;
    Subscription observer = link.notifications.observe(
        AppNotification::prepareActiveCall, [this](const auto& object) { prepared.push_back(object); });
};

// The pad

TEST_F(CallsTabTest, ThePadHasItsTwelveButtons) {
    const std::vector<std::pair<std::string, std::string>> expected{
        {"1", ""},        {"2", "A B C"}, {"3", "D E F"},   {"4", "G H I"}, {"5", "J K L"}, {"6", "M N O"},
        {"7", "P Q R S"}, {"8", "T U V"}, {"9", "W X Y Z"}, {"*", ""},      {"0", "+"},     {"#", ""}};
    ASSERT_EQ(view->calls.dialButtons.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(view->calls.dialButtons[i].digit, expected[i].first);
        EXPECT_EQ(view->calls.dialButtons[i].letters, expected[i].second);
        view->calls.dialpadNumber.set("7");
        view->calls.pressDialButton(i);
        EXPECT_EQ(view->calls.dialpadNumber.get(), "7" + expected[i].first);
    }
}

TEST_F(CallsTabTest, AnEmptyNumberShowsABlankAndCannotBeCalledOrShortened) {
    EXPECT_EQ(view->calls.dialPad.get(), (DialPad{.numberText = " "}));
    view->calls.dialpadNumber.set("12");
    EXPECT_EQ(view->calls.dialPad.get(), (DialPad{.numberText = "12", .canCall = true, .showsDelete = true}));
}

TEST_F(CallsTabTest, TheDeleteButtonRemovesTheLastCharacterIfThereIsOne) {
    view->calls.dialpadNumber.set("12");
    view->calls.deleteLastDigit();
    EXPECT_EQ(view->calls.dialpadNumber.get(), "1");
    view->calls.deleteLastDigit();
    view->calls.deleteLastDigit();
    EXPECT_EQ(view->calls.dialpadNumber.get(), "");
}

TEST_F(CallsTabTest, TheSimPickerNeedsTwoSimsAndAlwaysStandsFor0And1) {
    EXPECT_FALSE(view->calls.dialPad.get().showsSimPicker);
    store.availableSIMs.set({{.slot = 1, .carrier = "One"}});
    EXPECT_FALSE(view->calls.dialPad.get().showsSimPicker);
    store.availableSIMs.set({{.slot = 1, .carrier = "One"}, {.slot = 2, .carrier = "Two"}});
    EXPECT_TRUE(view->calls.dialPad.get().showsSimPicker);
    EXPECT_EQ(simSegments[0].title, "1");
    EXPECT_EQ(simSegments[0].slot, 0);
    EXPECT_EQ(simSegments[1].title, "2");
    EXPECT_EQ(simSegments[1].slot, 1);
}

// Calling

TEST_F(CallsTabTest, CallingTellsThePhoneAndPreparesTheCall) {
    view->phone.phoneCallLog.set({{.number = "+44 7700 900123", .name = "Anna"}});
    view->calls.dialpadNumber.set("07700900123");
    view->phone.selectedSimSlot.set(1);
    view->calls.startCall();
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"make_call","number":"07700900123","simSlot":1})"));
    EXPECT_THAT(prepared,
                ElementsAre(AppNotificationObject(TextMap{{"number", "07700900123"}, {"name", "Anna"}})));
    EXPECT_EQ(view->calls.dialpadNumber.get(), "07700900123");
}

TEST_F(CallsTabTest, ThePhoneIsAskedToCallBeforeTheCallIsPrepared) {
    on.drain();
    std::vector<std::size_t> messagesBefore;
    const auto later = link.notifications.observe(AppNotification::prepareActiveCall, [&](const auto&) {
        messagesBefore.push_back(on.server.pending());
    });
    view->calls.callBack("5");
    EXPECT_THAT(messagesBefore, ElementsAre(1u));
}

TEST_F(CallsTabTest, AnUnknownNumberIsItsOwnName) {
    view->calls.dialpadNumber.set("*#06#");
    view->calls.startCall();
    EXPECT_THAT(prepared, ElementsAre(AppNotificationObject(TextMap{{"number", "*#06#"}, {"name", "*#06#"}})));
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"make_call","number":"*#06#","simSlot":0})"));
}

TEST_F(CallsTabTest, WithNoPhoneTheCallIsPreparedAllTheSame) {
    phone->report(ConnectionState::cancelled);
    on.drain();
    view->calls.dialpadNumber.set("5");
    view->calls.startCall();
    EXPECT_THAT(takeSent(), IsEmpty());
    EXPECT_EQ(prepared.size(), 1u);
}

TEST_F(CallsTabTest, ReturnWithAnEmptyNumberDoesNothing) {
    EXPECT_EQ(press(KeyPress::Key::returnKey), KeyPressResult::handled);
    EXPECT_THAT(takeSent(), IsEmpty());
    EXPECT_THAT(prepared, IsEmpty());
}

TEST_F(CallsTabTest, EndingACallHangsUpAndClears) {
    store.incomingCallInfo.set(IncomingCallInfo{.number = "5"});
    view->calls.isSpeakerOn.set(true);
    view->calls.isMuted.set(true);
    view->calls.endCall();
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"hangup_call"})"));
    EXPECT_EQ(store.incomingCallInfo.get(), std::nullopt);
    EXPECT_FALSE(view->calls.isSpeakerOn.get());
    EXPECT_FALSE(view->calls.isMuted.get());
}

TEST_F(CallsTabTest, EndingACallHangsUpBeforeAnythingIsCleared) {
    on.drain();
    std::vector<std::string> steps;
    const auto note = [&](const std::string& what) {
        steps.push_back(what + (on.server.pending() == 0 ? " before the message" : ""));
    };
    const auto call = store.incomingCallInfo.observe([&](const auto&) { note("call"); });
    const auto speaker = view->calls.isSpeakerOn.observe([&](bool) { note("speaker"); });
    const auto mute = view->calls.isMuted.observe([&](bool) { note("mute"); });
    view->calls.endCall();
    EXPECT_THAT(steps, ElementsAre("call", "speaker", "mute"));
}

// The keyboard

TEST_F(CallsTabTest, DialCharactersAppendAndAnythingElsePassesOn) {
    for (const char* key : {"1", "*", "#", "0"}) {
        EXPECT_EQ(type(key), KeyPressResult::handled) << key;
    }
    for (const char* key : {"a", "+", " ", "", "1a", "²"}) {
        EXPECT_EQ(type(key), KeyPressResult::ignored) << key;
    }
    EXPECT_EQ(view->calls.dialpadNumber.get(), "1*#0");
}

TEST_F(CallsTabTest, CharactersInTheOrderOfTheDialTextAppendTogether) {
    EXPECT_EQ(type("456"), KeyPressResult::handled);
    EXPECT_EQ(type("654"), KeyPressResult::ignored);
    EXPECT_EQ(view->calls.dialpadNumber.get(), "456");
}

TEST_F(CallsTabTest, AHeldDigitRepeatsAndItsReleaseAddsNothing) {
    type("5");
    type("5", KeyPress::Phase::repeat);
    EXPECT_EQ(type("5", KeyPress::Phase::up), KeyPressResult::ignored);
    EXPECT_EQ(view->calls.dialpadNumber.get(), "55");
}

TEST_F(CallsTabTest, BothDeleteKeysRemoveTheLastDigitAndAreHandledOnAnEmptyNumber) {
    view->calls.dialpadNumber.set("123");
    EXPECT_EQ(press(KeyPress::Key::deleteKey), KeyPressResult::handled);
    EXPECT_EQ(press(KeyPress::Key::deleteForward), KeyPressResult::handled);
    EXPECT_EQ(view->calls.dialpadNumber.get(), "1");
    press(KeyPress::Key::deleteKey);
    EXPECT_EQ(press(KeyPress::Key::deleteKey), KeyPressResult::handled);
    EXPECT_EQ(view->calls.dialpadNumber.get(), "");
}

TEST_F(CallsTabTest, ReturnCalls) {
    view->calls.dialpadNumber.set("5");
    EXPECT_EQ(press(KeyPress::Key::returnKey), KeyPressResult::handled);
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"make_call","number":"5","simSlot":0})"));
}

TEST(DialerKeyHandlerTest, AnActiveCallSuspendsAllKeys) {
    std::string number = "1";
    int returns = 0;
    const DialerKeyHandler handler{.get = [&] { return number; },
                                   .set = [&](std::string changed) { number = std::move(changed); },
                                   .isCallActive = true,
                                   .onReturn = [&] { ++returns; }};
    for (const auto key : {KeyPress::Key::deleteKey, KeyPress::Key::returnKey, KeyPress::Key::character}) {
        EXPECT_EQ(handler.handle({.key = key, .characters = "5"}), KeyPressResult::ignored);
    }
    EXPECT_EQ(number, "1");
    EXPECT_EQ(returns, 0);
}

// Recent calls

TEST_F(CallsTabTest, RowsKeepTheOrderOfTheLogAndShowTheirDirection) {
    view->phone.phoneCallLog.set({{.number = "3", .name = "Anna", .date = 1'700'000'000'000, .type = 3},
                                  {.number = "2", .date = 1'600'000'000'000, .type = 2},
                                  {.number = "1", .date = 1'699'919'999'000, .type = 1},
                                  {.number = "5", .name = "", .date = 1'699'919'999'000, .type = 5}});
    constexpr std::string_view in = "phone.arrow.down.left";
    constexpr std::string_view out = "phone.arrow.up.right";
    EXPECT_THAT(view->calls.recentCalls.get(),
                ElementsAre(RecentCallRow{1'700'000'000'000, "3", "Anna", "03:43", in, ColorRole::red},
                            RecentCallRow{1'600'000'000'000, "2", "2", "13/09/2020", out, ColorRole::primary},
                            RecentCallRow{1'699'919'999'000, "1", "1", "Yesterday", in, ColorRole::primary},
                            RecentCallRow{1'699'919'999'000, "5", "5", "Yesterday", in, ColorRole::primary}));
}

TEST_F(CallsTabTest, PressingARowReplacesTheNumberAndCallsBack) {
    view->calls.dialpadNumber.set("stale");
    view->calls.callBack("+44 77");
    EXPECT_EQ(view->calls.dialpadNumber.get(), "+44 77");
    EXPECT_THAT(takeSent(), ElementsAre(R"({"action":"make_call","number":"+44 77","simSlot":0})"));
}

TEST_F(CallsTabTest, ARowOfALongNumberCallsAllOfIt) {
    const std::string number(10'000, '7');
    view->phone.phoneCallLog.set({{"1", std::nullopt, 5, 0, 1}, {number, std::nullopt, 5, 0, 1}});
    const std::vector<RecentCallRow> rows = view->calls.recentCalls.get();
    EXPECT_LT(rows.at(1).number.size(), 5000u);
    view->calls.callBack(rows.at(1));
    EXPECT_EQ(view->calls.dialpadNumber.get(), number);
    view->calls.callBack(rows.at(0));
    EXPECT_EQ(view->calls.dialpadNumber.get(), "1");
    view->phone.phoneCallLog.set({});
    view->calls.dialpadNumber.set("");
    view->calls.callBack(rows.at(0));
    EXPECT_EQ(view->calls.dialpadNumber.get(), "1") << "also when it has gone from the log";
}

TEST(FormatDurationTest, GivesMinutesAndSecondsWithoutHours) {
    EXPECT_EQ(formatDuration(0), "00:00");
    EXPECT_EQ(formatDuration(59), "00:59");
    EXPECT_EQ(formatDuration(60), "01:00");
    EXPECT_EQ(formatDuration(3600), "60:00");
    EXPECT_EQ(formatDuration(3725), "62:05");
    EXPECT_EQ(formatDuration(360'000), "6000:00");
}

} // namespace
} // namespace velloway::test
