#include "shell/CallWindows.h"

#include "fakes/ServerHarness.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TextMap = std::map<std::string, std::string>;

class CallWindowsTest : public testing::Test, protected ServerHarness {
protected:
    void SetUp() override {
        listen();
        phone = connect();
        windows->setupIncomingCallObservation();
        windows->setupActiveCallObservation();
        windows->setupCallEndObservation();
        on.drain();
        on.journal.take();
        on.log.take();
    }
    void TearDown() override {
        if (windows) { // a banner keeps its windows alive, and they it
            windows->closeIncomingCallBanner();
            windows->closeActiveCallWindow();
        }
    }

    void ring(std::string number, std::optional<std::string> name = {}) {
        store->incomingCallInfo.set(IncomingCallInfo{.number = std::move(number), .name = std::move(name)});
        on.drain();
    }
    void prepare(AppNotificationObject object) {
        notifications.post(AppNotification::prepareActiveCall, object);
        on.drain();
    }
    void duration(AppNotificationObject object) {
        notifications.post(AppNotification::callDurationUpdated, object);
        on.drain();
    }
    FakeWindow& panel(std::size_t index) { return *on.windows.panels.at(index); }
    IncomingCallBanner& ringing(std::size_t index) {
        return dynamic_cast<IncomingCallBanner&>(*panel(index).content);
    }
    ActiveCallBanner& active(std::size_t index) {
        return dynamic_cast<ActiveCallBanner&>(*panel(index).content);
    }
    std::vector<std::string> sent() {
        on.drain();
        std::vector<std::string> texts;
        for (const auto& message : phone->sent) {
            texts.push_back(message.text);
        }
        return texts;
    }

    std::shared_ptr<FakeConnection> phone;
    std::shared_ptr<CallWindows> windows = CallWindows::make({.main = on.main,
                                                              .historyStore = store,
                                                              .notifications = notifications,
                                                              .server = *server,
                                                              .windows = on.windows,
                                                              .log = on.log});
};

TEST_F(CallWindowsTest, ThePresentValueIsDeliveredOnceSoonAfterTheStart) {
    auto others = CallWindows::make({.main = on.main,
                                     .historyStore = store,
                                     .notifications = notifications,
                                     .server = *server,
                                     .windows = on.windows,
                                     .log = on.log});
    others->setupIncomingCallObservation();
    EXPECT_THAT(on.log.lines(), IsEmpty());
    on.drain();
    EXPECT_THAT(on.log.lines(), ElementsAre("[AppDelegate] Incoming call cleared"));
    EXPECT_THAT(on.windows.panels, IsEmpty());
}

TEST_F(CallWindowsTest, ARingingCallOpensItsPanelInTheCorner) {
    on.windows.visibleFrame = Rect{100, 50, 1440, 875};
    ring("123", "Bob");
    EXPECT_THAT(on.log.lines(), ElementsAre("[AppDelegate] Incoming call detected: 123"));
    EXPECT_THAT(on.journal.entries(),
                ElementsAre("panel 1 setFrameOrigin", "panel 1 setIsVisible true",
                            "panel 1 makeKeyAndOrderFront", "panel 1 orderFrontRegardless"));
    EXPECT_EQ(panel(0).origin, (std::pair<double, double>(1540 - 370, 925 - 100)));
    EXPECT_EQ(ringing(0).text().firstLine, "Bob");
}

TEST_F(CallWindowsTest, EachPanelSaysWhatItIsFor) {
    ring("123");
    prepare(std::string("123"));
    EXPECT_THAT(on.windows.panelProperties,
                ElementsAre(PanelProperties{.kind = PanelKind::ringingCall, .size = {350, 80}},
                            PanelProperties{.kind = PanelKind::runningCall, .size = {350, 80}}));
}

TEST_F(CallWindowsTest, AChangedCallerIsShownInTheSamePanelWhereTheUserPutIt) {
    ring("123");
    panel(0).origin = {7, 8};
    on.journal.take();
    ring("123", "Bob");
    EXPECT_EQ(on.windows.panels.size(), 1u);
    EXPECT_EQ(panel(0).origin, (std::pair<double, double>(7, 8)));
    EXPECT_EQ(ringing(0).text().firstLine, "Bob");
    EXPECT_THAT(on.journal.entries(),
                ElementsAre("panel 1 setContent", "panel 1 setIsVisible true", "panel 1 orderFrontRegardless"));
}

TEST_F(CallWindowsTest, AClearedCallClosesThePanelAndTheNextOneOpensAnother) {
    ring("123");
    on.journal.take();
    store->incomingCallInfo.set(std::nullopt);
    on.drain();
    EXPECT_THAT(on.journal.entries(), ElementsAre("panel 1 setIsVisible false", "panel 1 orderOut"));
    EXPECT_EQ(on.log.lines().back(), "[AppDelegate] Incoming call cleared");
    ring("456");
    EXPECT_EQ(on.windows.panels.size(), 2u);
}

TEST_F(CallWindowsTest, QuickChangesAreDeliveredInOrder) {
    store->incomingCallInfo.set(IncomingCallInfo{.number = "123"});
    store->incomingCallInfo.set(std::nullopt);
    EXPECT_THAT(on.windows.panels, IsEmpty()) << "only a turn of the main queue later";
    on.drain();
    EXPECT_EQ(on.windows.panels.size(), 1u);
    EXPECT_FALSE(panel(0).visible);
}

TEST_F(CallWindowsTest, WithoutAMainScreenThePanelsStayWhereTheyWereMade) {
    on.windows.visibleFrame = std::nullopt;
    ring("123");
    prepare(std::string("123"));
    EXPECT_EQ(panel(0).origin, (std::pair<double, double>(0, 0)));
    for (const std::string& entry : on.journal.entries()) {
        EXPECT_THAT(entry, testing::Not(testing::HasSubstr("setFrameOrigin")));
    }
}

TEST_F(CallWindowsTest, AcceptAnswersAndHandsOverToTheInCallPanel) {
    ring("123", "Bob");
    ringing(0).onAnswer();
    on.drain();
    EXPECT_THAT(sent(), ElementsAre(R"({"action":"answer_call"})"));
    EXPECT_EQ(store->incomingCallInfo.get(), std::nullopt);
    EXPECT_FALSE(panel(0).visible);
    ASSERT_EQ(on.windows.panels.size(), 2u);
    EXPECT_TRUE(panel(1).visible);
    EXPECT_EQ(active(1).text().firstLine, "Bob");
    EXPECT_EQ(active(1).text().secondLine, "123");
}

TEST_F(CallWindowsTest, AcceptPostsTheNumberAndAnEmptyNameForAnAbsentOne) {
    std::vector<AppNotificationObject> prepared;
    const auto observer = notifications.observe(AppNotification::prepareActiveCall,
                                                [&](const auto& object) { prepared.push_back(object); });
    ring(" 123 ");
    ringing(0).onAnswer();
    EXPECT_THAT(prepared, ElementsAre(AppNotificationObject(TextMap{{"number", " 123 "}, {"name", ""}})));
}

TEST_F(CallWindowsTest, DeclineHangsUpAndOpensNothing) {
    ring("123");
    ringing(0).onHangup();
    on.drain();
    EXPECT_THAT(sent(), ElementsAre(R"({"action":"hangup_call"})"));
    EXPECT_FALSE(panel(0).visible);
    EXPECT_EQ(on.windows.panels.size(), 1u);
}

TEST_F(CallWindowsTest, WithNoPhoneTheButtonsCloseThePanelAllTheSame) {
    phone->report(ConnectionState::cancelled);
    on.drain();
    ring("123");
    ringing(0).onHangup();
    on.drain();
    EXPECT_FALSE(panel(0).visible);
}

TEST_F(CallWindowsTest, APreparedCallOpensTheInCallPanelWithoutTheKeyboard) {
    prepare(TextMap{{"number", "123"}, {"name", "Bob"}});
    EXPECT_THAT(on.journal.entries(), ElementsAre("panel 1 setFrameOrigin", "panel 1 setIsVisible true",
                                                  "panel 1 orderFrontRegardless"));
    EXPECT_EQ(panel(0).origin, (std::pair<double, double>(1440 - 370, 875 - 100)));
    EXPECT_EQ(active(0).text(), (BannerText{"Bob", "123", "00:00"}));
}

TEST_F(CallWindowsTest, APlainNumberOpensItToo) {
    prepare(std::string("123"));
    EXPECT_EQ(active(0).text(), (BannerText{"123", {}, "00:00"}));
}

TEST_F(CallWindowsTest, WithoutANumberNothingOpens) {
    prepare(std::string());
    prepare(TextMap{{"name", "Bob"}});
    prepare(TextMap{{"number", ""}, {"name", "Bob"}});
    prepare(std::monostate());
    prepare(std::int64_t{5});
    EXPECT_THAT(on.windows.panels, IsEmpty());
}

TEST_F(CallWindowsTest, ANumberOfBlanksIsANumber) {
    prepare(std::string(" "));
    EXPECT_EQ(active(0).text().firstLine, " ");
}

TEST_F(CallWindowsTest, ASecondPreparedCallChangesNothing) {
    prepare(TextMap{{"number", "123"}, {"name", "Bob"}});
    duration(std::int64_t{61});
    prepare(TextMap{{"number", "456"}, {"name", "Eve"}});
    EXPECT_EQ(on.windows.panels.size(), 1u);
    EXPECT_EQ(active(0).text(), (BannerText{"Bob", "123", "01:01"}));
}

TEST_F(CallWindowsTest, TheEndOfTheCallClosesBothPanels) {
    ring("123");
    prepare(std::string("123"));
    duration(std::int64_t{-1});
    EXPECT_EQ(store->incomingCallInfo.get(), std::nullopt);
    EXPECT_FALSE(panel(0).visible);
    EXPECT_FALSE(panel(1).visible);
    prepare(std::string("456"));
    EXPECT_EQ(on.windows.panels.size(), 3u);
    EXPECT_EQ(active(2).text().lastLine, "00:00");
}

TEST_F(CallWindowsTest, NothingButMinusOneEndsACall) {
    ring("123");
    prepare(std::string("123"));
    duration(std::int64_t{-2});
    duration(std::int64_t{0});
    duration(std::string("-1"));
    duration(std::monostate());
    EXPECT_TRUE(panel(0).visible);
    EXPECT_TRUE(panel(1).visible);
}

TEST_F(CallWindowsTest, HangingUpWaitsForThePhoneToCloseThePanel) {
    prepare(std::string("123"));
    active(0).hangup();
    on.drain();
    EXPECT_TRUE(panel(0).visible);
    duration(std::int64_t{-1});
    EXPECT_FALSE(panel(0).visible);
}

TEST_F(CallWindowsTest, TheEndOfACallClearsTheStoreAlsoWhenNothingRings) {
    duration(std::int64_t{-1});
    EXPECT_THAT(on.log.take(), ElementsAre("[AppDelegate] Incoming call cleared"));
}

TEST_F(CallWindowsTest, AButtonStillWorksWhenNobodyElseHoldsTheWindows) {
    const auto info = std::make_shared<const IncomingCallInfo>(IncomingCallInfo{.number = "1"});
    store->incomingCallInfo.set(*info);
    const auto banner = windows->createBannerView(info);
    windows.reset();
    banner->onHangup();
    EXPECT_EQ(store->incomingCallInfo.get(), std::nullopt);
    banner->onAnswer();
    EXPECT_THAT(sent(), ElementsAre(R"({"action":"hangup_call"})", R"({"action":"answer_call"})"));
}

TEST_F(CallWindowsTest, AStepThatComesAfterTheWindowsHaveGoneIsSkipped) {
    store->incomingCallInfo.set(IncomingCallInfo{.number = "123"});
    notifications.post(AppNotification::prepareActiveCall, std::string("123"));
    windows.reset();
    on.drain();
    EXPECT_THAT(on.windows.panels, IsEmpty());
    EXPECT_THAT(on.log.lines(), IsEmpty());
}

TEST_F(CallWindowsTest, ACallOfThePhoneRunsThroughBothPanels) {
    receive(*phone, R"({"action":"incoming_call","state":"RINGING","number":"123","name":"Bob"})");
    ASSERT_EQ(on.windows.panels.size(), 1u);
    ringing(0).onAnswer();
    receive(*phone, R"({"action":"call_update","state":"ACTIVE","number":"123","duration":65})");
    ASSERT_EQ(on.windows.panels.size(), 2u);
    EXPECT_EQ(active(1).text().lastLine, "01:05");
    receive(*phone, R"({"action":"call_ended"})");
    EXPECT_FALSE(panel(1).visible);
}

} // namespace
} // namespace velloway::test
