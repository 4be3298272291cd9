#include "features/CallEvents.h"
#include "features/FeatureTest.h"

namespace velloway::test {

namespace {

using Banner = CallEffects::Banner;
using State = std::optional<std::string>;
using Duration = std::optional<std::int64_t>;
constexpr CallAction allActions[] = {CallAction::incomingCall, CallAction::callStateChanged,
                                     CallAction::callUpdate, CallAction::callEnded};

CallEffects over() {
    return {.isOver = true, .banner = Banner::clear};
}

struct Rule {
    const char* behaviour;
    CallEvent event;
    CallEffects effects;
};

const Rule rules[] = {
    {"call_ended is over, whatever else it says",
     {CallAction::callEnded, "RINGING", 95, "0151", "Ann"},
     over()},
    {"IDLE under incoming_call with a number is over",
     {CallAction::incomingCall, "IDLE", {}, "0151", {}},
     over()},
    {"call_update with -1 is over", {CallAction::callUpdate, {}, -1, "", {}}, over()},
    {"call_update with 0 is not over", {CallAction::callUpdate, {}, 0, "", {}}, {.duration = 0}},
    {"call_state_changed with -1 is not over",
     {CallAction::callStateChanged, {}, -1, "", {}},
     {.duration = -1}},
    {"incoming_call with -1 is not over", {CallAction::incomingCall, {}, -1, "", {}}, {.duration = -1}},
    {"-2 is passed on", {CallAction::callUpdate, {}, -2, "", {}}, {.duration = -2}},
    {"incoming_call with a number rings",
     {CallAction::incomingCall, {}, {}, "0151", {}},
     {.banner = Banner::show}},
    {"RINGING rings under any action",
     {CallAction::callUpdate, "RINGING", 3, "0151", {}},
     {.banner = Banner::show, .duration = 3}},
    {"incoming_call with OFFHOOK and a number rings",
     {CallAction::incomingCall, "OFFHOOK", {}, "0151", {}},
     {.banner = Banner::show}},
    {"incoming_call with OFFHOOK and no number clears",
     {CallAction::incomingCall, "OFFHOOK", 5, "", {}},
     {.banner = Banner::clear, .duration = 5}},
    {"OFFHOOK with a number clears",
     {CallAction::callStateChanged, "OFFHOOK", {}, "0151", {}},
     {.banner = Banner::clear}},
    {"incoming_call without a number changes nothing, even with a name",
     {CallAction::incomingCall, {}, {}, "", "Ann"},
     {}},
    {"RINGING without a number changes nothing",
     {CallAction::callStateChanged, "RINGING", 1, "", {}},
     {.duration = 1}},
    {"a number alone changes nothing", {CallAction::callStateChanged, {}, {}, "0151", "Ann"}, {}},
    {"OFFHOOK under call_update clears",
     {CallAction::callUpdate, "OFFHOOK", 5, "", {}},
     {.banner = Banner::clear, .duration = 5}},
    {"OFFHOOK under call_update with a number clears",
     {CallAction::callUpdate, "OFFHOOK", {}, "0151", {}},
     {.banner = Banner::clear}},
    {"-1 beside a call that rings is passed on",
     {CallAction::incomingCall, {}, -1, "0151", {}},
     {.banner = Banner::show, .duration = -1}},
    {"-2 beside a call that is taken is passed on",
     {CallAction::callStateChanged, "OFFHOOK", -2, "", {}},
     {.banner = Banner::clear, .duration = -2}},
    {"an unknown state changes nothing", {CallAction::callUpdate, "HOLDING", 12, "0151", {}}, {.duration = 12}},
};

class CallEventsTest : public FeatureTest {
protected:
    CallEventsTest() {
        subscriptions_.push_back(store->incomingCallInfo.observe([this](const auto& info) {
            host.journal.note(info ? "rings " + info->number + "/" + info->name.value_or("-")
                                   : "rings no more");
        }));
        subscriptions_.push_back(appNotifications.observe(
            AppNotification::callDurationUpdated, [this](const AppNotificationObject& object) {
                host.journal.note("duration " + std::to_string(std::get<std::int64_t>(object)));
            }));
    }

    Entries effectsOf(const CallEvent& event) {
        events.handle(event);
        EXPECT_TRUE(host.journal.entries().empty()) << "the main queue must come first";
        host.main.runAll();
        return host.journal.take();
    }

    CallEvents events{host.main, link, appNotifications, host.log};

private:
    std::vector<Subscription> subscriptions_;
};

} // namespace

TEST(CallEventRules, DecideEachEventByItself) {
    for (const Rule& rule : rules) {
        EXPECT_EQ(decideCallEffects(rule.event), rule.effects) << rule.behaviour;
    }
}

TEST(CallEventRules, IdleEndsTheCallUnderEveryAction) {
    for (const CallAction action : allActions) {
        EXPECT_TRUE(isCallOver(action, "IDLE", 7));
        EXPECT_EQ(isCallOver(action, "OFFHOOK", 7), action == CallAction::callEnded);
        EXPECT_EQ(isCallOver(action, {}, -1),
                  action == CallAction::callEnded || action == CallAction::callUpdate);
    }
}

TEST_F(CallEventsTest, StoresTheRingingCallBeforeItPostsTheDuration) {
    EXPECT_EQ(effectsOf({CallAction::incomingCall, "RINGING", 4, "0151", "Ann"}),
              (Entries{"rings 0151/Ann", "duration 4"}));
    EXPECT_EQ(host.log.take(), (Entries{"[WebSocketServer] Setting Banner Info: 0151"}));
    EXPECT_EQ(store->incomingCallInfo.get(), (IncomingCallInfo{"0151", "Ann"}));
}

TEST_F(CallEventsTest, PostsANegativeDurationBesideAChangeOfTheBanner) {
    EXPECT_EQ(effectsOf({CallAction::incomingCall, "RINGING", -1, "0151", {}}),
              (Entries{"rings 0151/-", "duration -1"}));
    EXPECT_EQ(effectsOf({CallAction::callStateChanged, "OFFHOOK", -2, "", {}}),
              (Entries{"rings no more", "duration -2"}));
}

TEST_F(CallEventsTest, WritesTheStoreAgainForARepeatedRing) {
    EXPECT_EQ(effectsOf({CallAction::incomingCall, "RINGING", {}, "0151", {}}), (Entries{"rings 0151/-"}));
    EXPECT_EQ(effectsOf({CallAction::incomingCall, "RINGING", {}, "0151", {}}), (Entries{"rings 0151/-"}));
}

TEST_F(CallEventsTest, ClearsTheStoreAndThenPostsMinusOneWhenTheCallIsOver) {
    effectsOf({CallAction::incomingCall, "RINGING", {}, "0151", {}});
    EXPECT_EQ(effectsOf({CallAction::callEnded, "IDLE", 95, "0151", "Ann"}),
              (Entries{"rings no more", "duration -1"}));
}

TEST_F(CallEventsTest, LeavesTheStoreAloneWhenOnlyTheDurationSaysMinusOne) {
    effectsOf({CallAction::incomingCall, "RINGING", {}, "0151", {}});
    EXPECT_EQ(effectsOf({CallAction::callStateChanged, {}, -1, "", {}}), (Entries{"duration -1"}));
    EXPECT_TRUE(store->incomingCallInfo.get());
}

TEST_F(CallEventsTest, ClearsTheBannerWithoutALineWhenTheCallIsTaken) {
    effectsOf({CallAction::incomingCall, "RINGING", {}, "0151", {}});
    host.log.take();
    EXPECT_EQ(effectsOf({CallAction::callStateChanged, "OFFHOOK", 0, "0151", {}}),
              (Entries{"rings no more", "duration 0"}));
    EXPECT_TRUE(host.log.lines().empty());
}

TEST_F(CallEventsTest, DoesNothingForAnEventWithoutUsableValues) {
    EXPECT_TRUE(effectsOf({CallAction::callUpdate, {}, {}, "", {}}).empty());
    EXPECT_TRUE(host.log.lines().empty());
}

TEST_F(CallEventsTest, KeepsTheOrderOfTheEvents) {
    events.handle({CallAction::incomingCall, "RINGING", {}, "0151", {}});
    events.handle({CallAction::callStateChanged, "OFFHOOK", 0, "", {}});
    events.handle({CallAction::callUpdate, {}, 1, "", {}});
    events.handle({CallAction::callEnded, {}, {}, "", {}});
    host.main.runAll();
    EXPECT_EQ(host.journal.take(), (Entries{"rings 0151/-", "rings no more", "duration 0", "duration 1",
                                            "rings no more", "duration -1"}));
}

TEST_F(CallEventsTest, StillPostsTheEndAndTheDurationsWhenTheServerHasGone) {
    events.handle({CallAction::incomingCall, "RINGING", 2, "0151", {}});
    events.handle({CallAction::callEnded, {}, {}, "", {}});
    link.reset();
    host.main.runAll();
    EXPECT_EQ(host.journal.take(), (Entries{"duration 2", "duration -1"}));
}

TEST_F(CallEventsTest, StillPostsTheEndWhenThereIsNoStore) {
    link->historyStore.reset();
    EXPECT_EQ(effectsOf({CallAction::callEnded, {}, {}, "", {}}), (Entries{"duration -1"}));
}

} // namespace velloway::test
