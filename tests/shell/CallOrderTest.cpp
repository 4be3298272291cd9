// In which order the buttons of the call panels do what they do.

#include "fakes/ServerHarness.h"
#include "shell/ActiveCallBanner.h"
#include "shell/CallWindows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velloway::test {
namespace {

using testing::ElementsAre;

class CallOrderTest : public testing::Test, protected ServerHarness {
protected:
    void SetUp() override {
        listen();
        phone = connect();
        windows->setupIncomingCallObservation();
        store->incomingCallInfo.set(IncomingCallInfo{.number = "123", .name = "Bob"});
        on.drain();
        // Whatever was handed to the server so far leaves at once.
        phone->onSend = [this] { steps.push_back("sent"); };
        prepared = notifications.observe(AppNotification::prepareActiveCall, [this](const auto&) {
            on.server.runAll();
            steps.push_back("posted");
        });
        cleared = store->incomingCallInfo.observe([this](const auto& info) {
            on.server.runAll();
            steps.push_back(info ? "stored" : "cleared");
        });
    }
    void TearDown() override {
        phone->onSend = nullptr;
        windows->closeIncomingCallBanner();
    }

    const IncomingCallBanner& ringing() {
        return dynamic_cast<IncomingCallBanner&>(*on.windows.panels.at(0)->content);
    }

    std::shared_ptr<FakeConnection> phone;
    std::vector<std::string> steps;
    std::shared_ptr<CallWindows> windows = CallWindows::make({.main = on.main,
                                                              .historyStore = store,
                                                              .notifications = notifications,
                                                              .server = *server,
                                                              .windows = on.windows,
                                                              .log = on.log});
    Subscription prepared;
    Subscription cleared;
};

TEST_F(CallOrderTest, AcceptAnswersThenPostsThenClears) {
    ringing().onAnswer();
    EXPECT_THAT(steps, ElementsAre("sent", "posted", "cleared"));
}

TEST_F(CallOrderTest, DeclineHangsUpThenClears) {
    ringing().onHangup();
    EXPECT_THAT(steps, ElementsAre("sent", "cleared"));
}

TEST_F(CallOrderTest, MuteFlipsBeforeThePhoneIsTold) {
    ActiveCallBanner banner("Bob", "123", *server, notifications);
    const auto flipped = banner.isMuted.observe([this](bool) {
        on.server.runAll();
        steps.push_back("flipped");
    });
    banner.toggleMute();
    on.drain();
    EXPECT_THAT(steps, ElementsAre("flipped", "sent"));
}

TEST_F(CallOrderTest, TheEndOfTheCallClearsTheStoreBeforeThePanelOfTheCallGoes) {
    windows->setupActiveCallObservation();
    windows->setupCallEndObservation();
    notifications.post(AppNotification::prepareActiveCall, std::string("123"));
    on.drain();
    const auto panel = on.windows.panels.at(1);
    ASSERT_TRUE(panel->visible);
    bool wasVisible = false;
    const auto observer = store->incomingCallInfo.observe([&](const auto&) { wasVisible = panel->visible; });
    notifications.post(AppNotification::callDurationUpdated, std::int64_t{-1});
    on.drain();
    EXPECT_TRUE(wasVisible);
    EXPECT_FALSE(panel->visible);
}

TEST_F(CallOrderTest, AChangeOfTheRingingCallIsLoggedBeforeItsPanelChanges) {
    const auto noted = [this](std::optional<IncomingCallInfo> info) {
        on.journal.take();
        store->incomingCallInfo.set(std::move(info));
        on.main.runAll();
        return on.journal.take();
    };
    on.log.onLine = [this](const std::string& line) { on.journal.note(line); };
    EXPECT_EQ(noted(IncomingCallInfo{.number = "456"}).front(), "[AppDelegate] Incoming call detected: 456");
    EXPECT_EQ(noted(std::nullopt).front(), "[AppDelegate] Incoming call cleared");
    on.log.onLine = nullptr;
}

TEST_F(CallOrderTest, APhoneThatEndsTheCallClearsTheStoreBeforeThePost) {
    const auto ended = notifications.observe(AppNotification::callDurationUpdated,
                                             [this](const auto&) { steps.push_back("ended"); });
    receive(*phone, R"({"action":"call_ended"})");
    EXPECT_THAT(steps, ElementsAre("cleared", "ended"));
}

} // namespace
} // namespace velloway::test
