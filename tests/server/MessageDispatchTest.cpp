#include "server/DispatchFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace velloway::test {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;

class MessageDispatchTest : public testing::Test {
protected:
    MessageDispatchTest() {
        for (const auto kind : {AppNotification::smsHistoryUpdated, AppNotification::callHistoryUpdated,
                                AppNotification::callDurationUpdated}) {
            subscriptions_.push_back(bench.notifications.observe(
                kind, [this, kind](const auto& object) { posted.emplace_back(kind, object); }));
        }
    }

    void deliver(std::string_view message) { bench.deliver(message); }
    std::vector<std::string> log() { return bench.fakes.log.take(); }
    HistoryStore& store() { return *bench.store; }

    /// Whether the message leaves no trace at all.
    void expectNoEffect(std::string_view message) {
        bench.handle(message);
        EXPECT_EQ(bench.fakes.main.pending(), 0U) << message;
        EXPECT_THAT(log(), IsEmpty()) << message;
        EXPECT_THAT(bench.fakes.input.posted, IsEmpty()) << message;
    }

    DispatchBench bench;
    std::vector<std::pair<AppNotification, AppNotificationObject>> posted;

private:
    std::vector<Subscription> subscriptions_;
};

TEST_F(MessageDispatchTest, LogsTextsThatAreNoJsonWithTheirLength) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"12", "2"}, {"\"text\"", "6"}, {"", "0"}, {"{", "1"}, {"null", "4"}, {"\xEF\xBB\xBFnope", "7"}};
    for (const auto& [message, size] : cases) {
        deliver(message);
        EXPECT_THAT(log(), ElementsAre(MatchesRegex("\\[WebSocketServer\\] JSON parsing failed: .+\\. "
                                                    "Payload size: " +
                                                    size + " bytes")))
            << message;
    }
}

TEST_F(MessageDispatchTest, WritesTheReasonOfAFailureWithOneStopOnly) {
    for (const char* message : {"12", "{\"a\":1e}", "{"}) {
        deliver(message);
        EXPECT_THAT(log(), ElementsAre(testing::Not(HasSubstr("..")))) << message;
    }
}

TEST_F(MessageDispatchTest, LogsTextsThatAreNoObject) {
    deliver(R"([{"action":"connected","deviceName":"x"}])");
    EXPECT_THAT(log(), ElementsAre("[WebSocketServer] Error: Received data is not a valid JSON dictionary."));
    EXPECT_FALSE(store().connectedDeviceName.get());
}

TEST_F(MessageDispatchTest, PassesOverWhatItDoesNotKnow) {
    for (const char* message : {"{}", R"({"title":"a"})", R"({"action":"no_such_action","app":"Chat"})",
                                R"({"action":"","app":"Chat"})", R"({"action":"Connected","deviceName":"x"})",
                                R"({"action":"connected ","deviceName":"x"})", R"({"action":null})",
                                R"({"action":5})", R"({"Action":"connected","deviceName":"x"})"}) {
        expectNoEffect(message);
    }
}

TEST_F(MessageDispatchTest, TakesTheNameOfThePhone) {
    deliver(R"({"action":"connected","deviceName":"Pixel\/8"})");
    EXPECT_EQ(store().connectedDeviceName.get(), "Pixel/8");
    for (const char* message :
         {R"({"action":"connected"})", R"({"action":"connected","deviceName":""})",
          R"({"action":"connected","deviceName":5})", R"({"action":"connected","deviceName":null})"}) {
        expectNoEffect(message);
    }
    EXPECT_EQ(store().connectedDeviceName.get(), "Pixel/8");
}

TEST_F(MessageDispatchTest, TakesTheLastOfTwoActions) {
    deliver(R"({"action":"sim_info","deviceName":"P","action":"connected"})");
    EXPECT_EQ(store().connectedDeviceName.get(), "P");
}

TEST_F(MessageDispatchTest, TakesMessagesWithNumbersBeyondEveryRange) {
    deliver(R"({"big":1e400,"action":"connected","huge":123456789012345678901234567890,"deviceName":"P"})");
    EXPECT_EQ(store().connectedDeviceName.get(), "P");
}

TEST_F(MessageDispatchTest, PostsTheSmsHistory) {
    deliver(R"({"action":"sms_history","messages":[{"address":"1","body":"b","date":5,"type":2},{}]})");
    ASSERT_EQ(posted.size(), 1U);
    EXPECT_EQ(posted[0].first, AppNotification::smsHistoryUpdated);
    EXPECT_EQ(posted[0].second, AppNotificationObject(std::vector<SmsRecord>{
                                    {.address = "1", .body = "b", .date = 5, .type = 2}, {}}));
    deliver(R"({"action":"sms_history","messages":[]})");
    EXPECT_EQ(posted[1].second, AppNotificationObject(std::vector<SmsRecord>{}));
}

TEST_F(MessageDispatchTest, PostsTheCallHistory) {
    deliver(R"({"action":"call_history","calls":[{"number":"1","date":5,"duration":6,"type":1}]})");
    ASSERT_EQ(posted.size(), 1U);
    EXPECT_EQ(posted[0].first, AppNotification::callHistoryUpdated);
    EXPECT_EQ(posted[0].second, AppNotificationObject(std::vector<CallRecord>{
                                    {.number = "1", .date = 5, .duration = 6, .type = 1}}));
}

TEST_F(MessageDispatchTest, DropsABadHistoryInSilenceAndShowsItNowhereElse) {
    for (const char* message : {R"({"action":"sms_history","app":"Chat"})",
                                R"({"action":"sms_history","messages":[{"type":"1"}],"app":"Chat"})",
                                R"({"action":"call_history","calls":[{"number":"1","date":5,"type":1}]})",
                                R"({"action":"call_history"})", R"({"action":"sim_info"})"}) {
        expectNoEffect(message);
    }
}

TEST_F(MessageDispatchTest, PostsNoHistoryOnceTheServerHasGone) {
    bench.handle(R"({"action":"sms_history","messages":[]})");
    bench.handle(R"({"action":"call_history","calls":[]})");
    bench.link.reset();
    bench.fakes.main.runAll();
    EXPECT_THAT(posted, IsEmpty());
}

TEST_F(MessageDispatchTest, PostsAHistoryEvenWithoutAStore) {
    bench.store.reset();
    deliver(R"({"action":"sms_history","messages":[]})");
    EXPECT_EQ(posted.size(), 1U);
}

TEST_F(MessageDispatchTest, ReplacesTheSimsAsAWhole) {
    deliver(R"({"action":"sim_info","sims":[{"slot":1,"carrier":"Two"},{"slot":0,"carrier":"One"}]})");
    const std::vector<SimInfo> sims{{.slot = 1, .carrier = "Two"}, {.slot = 0, .carrier = "One"}};
    EXPECT_EQ(store().availableSIMs.get(), sims);

    deliver(R"({"action":"sim_info","sims":[{"slot":2,"carrier":"Three"},{"slot":0}]})");
    EXPECT_EQ(store().availableSIMs.get(), sims);

    deliver(R"({"action":"sim_info","sims":[]})");
    EXPECT_TRUE(store().availableSIMs.get().empty());
}

TEST_F(MessageDispatchTest, TakesAnEmptyWifiNameButNoEmptyDeviceName) {
    deliver(R"({"action":"device_info","wifiName":"Home","deviceName":"Pixel"})");
    EXPECT_EQ(store().connectedWifiName.get(), "Home");
    EXPECT_EQ(store().connectedDeviceName.get(), "Pixel");

    deliver(R"({"action":"device_info","wifiName":"","deviceName":""})");
    EXPECT_EQ(store().connectedWifiName.get(), "");
    EXPECT_EQ(store().connectedDeviceName.get(), "Pixel");
}

TEST_F(MessageDispatchTest, TakesEachKeyOfTheDeviceByItself) {
    deliver(R"({"action":"device_info","deviceName":"Pixel"})");
    EXPECT_FALSE(store().connectedWifiName.get());
    deliver(R"({"action":"device_info","wifiName":"Home","deviceName":7})");
    EXPECT_EQ(store().connectedWifiName.get(), "Home");
    EXPECT_EQ(store().connectedDeviceName.get(), "Pixel");
    expectNoEffect(R"({"action":"device_info","wifiName":null})");
}

TEST_F(MessageDispatchTest, WritesTheDeviceInTwoJobsWifiFirst) {
    bench.handle(R"({"action":"device_info","deviceName":"Pixel","wifiName":"Home"})");
    EXPECT_EQ(bench.fakes.main.pending(), 2U);
    bench.fakes.main.runOne();
    EXPECT_EQ(store().connectedWifiName.get(), "Home");
    EXPECT_FALSE(store().connectedDeviceName.get());
}

TEST_F(MessageDispatchTest, WritesNothingOnceTheServerOrTheStoreHasGone) {
    bench.handle(R"({"action":"connected","deviceName":"Pixel"})");
    bench.handle(R"({"action":"sim_info","sims":[{"slot":0,"carrier":"One"}]})");
    bench.link.reset();
    bench.fakes.main.runAll();
    EXPECT_FALSE(store().connectedDeviceName.get());
    EXPECT_TRUE(store().availableSIMs.get().empty());

    DispatchBench other;
    other.handle(R"({"action":"connected","deviceName":"Pixel"})");
    const std::weak_ptr<HistoryStore> watched = other.store;
    other.store.reset();
    EXPECT_TRUE(watched.expired());
    EXPECT_EQ(other.fakes.main.runAll(), 1U);
}

TEST_F(MessageDispatchTest, KeepsTheOrderOfTheMessages) {
    std::vector<std::string> names;
    const auto subscription =
        store().connectedDeviceName.observe([&](const auto& name) { names.push_back(name.value_or("-")); });
    for (const char* name : {"a", "b", "c"}) {
        bench.handle(std::string(R"({"action":"connected","deviceName":")") + name + "\"}");
    }
    EXPECT_THAT(names, IsEmpty());
    bench.fakes.main.runAll();
    EXPECT_THAT(names, ElementsAre("a", "b", "c"));
}

// Notifications.

TEST_F(MessageDispatchTest, PutsANotificationIntoTheStore) {
    deliver(R"({"app":"Chat","title":"Anna","body":"Hi","time":1700000000,"key":"k"})");
    ASSERT_EQ(store().items.get().size(), 1U);
    const NotifPayload& item = store().items.get().front();
    EXPECT_EQ(item.app, "Chat");
    EXPECT_EQ(item.title, "Anna");
    EXPECT_EQ(item.body, "Hi");
    EXPECT_EQ(item.time, 1'700'000'000.0);
    EXPECT_EQ(item.key, "k");
}

TEST_F(MessageDispatchTest, TakesTheTimeOfArrivalForANotificationWithoutATime) {
    bench.handle(R"({"app":"Chat"})");
    bench.fakes.host.time += std::chrono::seconds(5);
    bench.fakes.main.runAll();
    EXPECT_EQ(store().items.get().front().time, 1'700'000'000.0);
}

TEST_F(MessageDispatchTest, TakesAnActionThatIsNoTextForNone) {
    for (const char* action : {"5", "null", "true", "{}", "[]"}) {
        deliver("{\"action\":" + std::string(action) + R"(,"app":"Chat"})");
        EXPECT_EQ(store().items.get().size(), 1U) << action;
        store().clear();
    }
}

TEST_F(MessageDispatchTest, ReadsAnAppOfAnyTypeStrictly) {
    for (const char* message : {R"({"app":5})", R"({"app":true})", R"({"app":{}})",
                                R"({"app":"Chat","title":5})", R"({"app":"Chat","time":"now"})"}) {
        expectNoEffect(message);
    }
    deliver(R"({"app":null})");
    ASSERT_EQ(store().items.get().size(), 1U);
    EXPECT_EQ(store().items.get().front().app, "");
}

TEST_F(MessageDispatchTest, ShowsANotificationOnTheDesktop) {
    deliver(R"({"app":"Chat","title":"Anna","body":"Hi","key":"k"})");
    ASSERT_EQ(bench.fakes.notificationCenter.requests.size(), 1U);
    EXPECT_EQ(bench.fakes.notificationCenter.requests.front().identifier, "k");
}

TEST_F(MessageDispatchTest, ShowsANotificationEvenIfTheStoreHasGone) {
    bench.handle(R"({"app":"Chat","title":"Anna","body":"Hi"})");
    bench.store.reset();
    bench.fakes.main.runAll();
    EXPECT_EQ(bench.fakes.notificationCenter.requests.size(), 1U);
}

TEST_F(MessageDispatchTest, ShowsANotificationEvenIfTheServerHasGone) {
    bench.handle(R"({"app":"Chat","title":"Anna","body":"Hi"})");
    bench.link.reset();
    bench.fakes.main.runAll();
    EXPECT_EQ(bench.fakes.notificationCenter.requests.size(), 1U);
    EXPECT_TRUE(store().items.get().empty());
}

// Calls.

TEST_F(MessageDispatchTest, LogsEachCallEventByItsAction) {
    for (const std::string action : {"incoming_call", "call_state_changed", "call_update", "call_ended"}) {
        deliver("{\"action\":\"" + action + "\"}");
        EXPECT_THAT(log(), ElementsAre("[WebSocketServer] Call Event: " + action));
    }
}

TEST_F(MessageDispatchTest, ReadsTheStateOfACallInAnyCase) {
    deliver(R"({"action":"call_state_changed","state":"rInging","number":"1"})");
    EXPECT_EQ(store().incomingCallInfo.get(), (IncomingCallInfo{.number = "1"}));
    deliver(R"({"action":"incoming_call","state":"idle","number":"1"})");
    EXPECT_FALSE(store().incomingCallInfo.get());
}

TEST_F(MessageDispatchTest, ReadsTheNumberFromTheFirstKeyThatIsThere) {
    const std::vector<std::pair<const char*, std::optional<std::string>>> cases{
        {R"("number":"1")", "1"},
        {R"("phoneNumber":"2")", "2"},
        {R"("incomingNumber":"3")", "3"},
        {R"("address":"4")", "4"},
        {R"("from":"5")", "5"},
        {R"("from":"5","address":"4","incomingNumber":"3","phoneNumber":"2","number":"1")", "1"},
        {R"("from":"5","address":"4","incomingNumber":"3","phoneNumber":"2")", "2"},
        {R"("from":"5","address":"4","incomingNumber":"3")", "3"},
        {R"("from":"5","address":"4")", "4"},
        {R"("number":" \t\u00a07700 900\r\n")", "7700 900"},
        {R"("number":5551)", "5551"},
        {R"("number":5551.0)", "5551"},
        {R"("number":5551.9)", "5551"},
        {R"("number":-0.5)", "0"},
        {R"("number":"","phoneNumber":"2")", std::nullopt},
        {R"("number":" \n","phoneNumber":"2")", std::nullopt},
        {R"("number":null,"phoneNumber":"2")", std::nullopt},
        {R"("number":null,"from":"5")", std::nullopt},
        {R"("number":{},"phoneNumber":"2")", std::nullopt},
        {R"("number":true,"phoneNumber":"2")", std::nullopt},
        {R"("other":"1")", std::nullopt},
    };
    for (const auto& [keys, number] : cases) {
        deliver(std::string(R"({"action":"incoming_call","name":"Anna",)") + keys + "}");
        const auto& info = store().incomingCallInfo.get();
        EXPECT_EQ(info ? std::optional(info->number) : std::nullopt, number) << keys;
        store().incomingCallInfo.set(std::nullopt);
    }
}

TEST_F(MessageDispatchTest, ReadsTheNameOfACallAsItCame) {
    deliver(R"({"action":"incoming_call","number":"1","name":" Anna "})");
    EXPECT_EQ(store().incomingCallInfo.get()->name, " Anna ");
    deliver(R"({"action":"incoming_call","number":"1","name":5})");
    EXPECT_EQ(store().incomingCallInfo.get()->name, std::nullopt);
}

TEST_F(MessageDispatchTest, CutsTheDurationTowardZero) {
    const std::vector<std::pair<const char*, std::int64_t>> cases{
        {"12", 12},
        {"12.9", 12},
        {"0", 0},
        {"-0.9", 0},
        {"-2.9", -2},
        {"1e3", 1000},
        {"-9223372036854775808.0", std::numeric_limits<std::int64_t>::min()}};
    for (const auto& [duration, seconds] : cases) {
        posted.clear();
        deliver(std::string(R"({"action":"call_update","duration":)") + duration + "}");
        ASSERT_EQ(posted.size(), 1U) << duration;
        EXPECT_EQ(posted[0].second, AppNotificationObject(seconds)) << duration;
    }
}

TEST_F(MessageDispatchTest, PassesOverADurationThatIsNoNumber) {
    for (const char* duration : {"\"5\"", "null", "true", "[]"}) {
        deliver(std::string(R"({"action":"call_update","duration":)") + duration + "}");
        EXPECT_THAT(posted, IsEmpty()) << duration;
    }
}

TEST_F(MessageDispatchTest, EndsACallOnADurationThatIsCutToMinusOne) {
    for (const char* duration : {"-1", "-1.0", "-1.5", "-1.9"}) {
        posted.clear();
        store().incomingCallInfo.set(IncomingCallInfo{.number = "1"});
        deliver(std::string(R"({"action":"call_update","duration":)") + duration + R"(,"number":1e400})");
        EXPECT_FALSE(store().incomingCallInfo.get()) << duration;
        ASSERT_EQ(posted.size(), 1U) << duration;
        EXPECT_EQ(posted[0].second, AppNotificationObject(std::int64_t{-1})) << duration;
    }
}

TEST_F(MessageDispatchTest, DoesNotReadTheNumberOfACallThatIsOver) {
    deliver(R"({"action":"call_ended","number":1e400,"duration":7})");
    deliver(R"({"action":"incoming_call","state":"idle","number":1e400})");
    EXPECT_EQ(posted.size(), 2U);
}

using MessageDispatchDeathTest = MessageDispatchTest;

TEST_F(MessageDispatchDeathTest, EndsTheProcessOnACallNumberBeyond64Bits) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    for (const char* number : {"1e400", "-1e400", "9223372036854775808", "-9223372036854777856", "1e19",
                               "99999999999999999999999"}) {
        for (const char* key : {"duration", "number", "from"}) {
            const std::string message =
                std::string(R"({"action":"call_state_changed",")") + key + "\":" + number + "}";
            EXPECT_DEATH(bench.handle(message),
                         "Fatal error: A number in a call event does not fit a 64-bit integer\\.\n")
                << message;
        }
    }
}

TEST_F(MessageDispatchDeathTest, EndsTheProcessOnTheDurationOfACallThatIsOver) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(bench.handle(R"({"action":"call_ended","duration":1e19})"),
                 "Fatal error: A number in a call event does not fit a 64-bit integer\\.\n");
}

// What reaches the other features.

TEST_F(MessageDispatchTest, PutsAClipboardTextOnThePasteboardEvenAnEmptyOne) {
    deliver(R"({"action":"clipboard","text":"a\/b"})");
    EXPECT_EQ(bench.fakes.pasteboard.content, "a/b");
    deliver(R"({"action":"clipboard","text":""})");
    EXPECT_EQ(bench.fakes.pasteboard.content, "");
    expectNoEffect(R"({"action":"clipboard"})");
    expectNoEffect(R"({"action":"clipboard","text":5})");
}

TEST_F(MessageDispatchTest, ReadsTheBatteryLoosely) {
    deliver(R"({"action":"battery_status","level":80.0,"isCharging":true})");
    EXPECT_EQ(store().batteryLevel.get(), 80);
    EXPECT_TRUE(store().isCharging.get());
    deliver(R"({"action":"battery_status","level":80.5,"isCharging":1})");
    EXPECT_FALSE(store().isCharging.get());
}

TEST_F(MessageDispatchTest, HandsARemoteCommandOverWhole) {
    deliver(R"({"action":"remote_control","command":"move","type":"mouse_move","dx":3.5,"dy":-2})");
    EXPECT_THAT(bench.fakes.input.posted, ElementsAre(Input(MovedPointer{3.5, -2})));
}

TEST_F(MessageDispatchTest, ReadsEachKeyOfARemoteCommandByItself) {
    deliver(R"({"action":"remote_control","command":"t","type":"keyboard_text","text":"h\u00e9"})");
    EXPECT_THAT(log(), ElementsAre("[WebSocketServer] Command received: t [Type: keyboard_text]",
                                   "[WebSocketServer] Typing unicode text: h\u00e9"));
    deliver(R"({"action":"remote_control","command":"c","type":5,"text":6,"dx":"1","button":[]})");
    EXPECT_THAT(log(), ElementsAre("[WebSocketServer] Command received: c [Type: remote]"));
    bench.fakes.input.posted.clear();
    expectNoEffect(R"({"action":"remote_control","type":"mouse_move","dx":1,"dy":1})");
    expectNoEffect(R"({"action":"remote_control","command":5,"type":"mouse_move","dx":1,"dy":1})");
}

class IncomingFileDispatchTest : public MessageDispatchTest {
protected:
    IncomingFileDispatchTest() { bench.fakes.host.downloads = "/home/me"; }

    std::string content(const std::string& name) const { return bench.fakes.files.content("/home/me/" + name); }
    bool isCompleted() {
        const auto& rows = store().fileTransfers.get();
        return !rows.empty() && rows.front().isCompleted;
    }
};

TEST_F(IncomingFileDispatchTest, WritesAFileFromItsPieces) {
    deliver(R"({"action":"file_transfer_start","fileName":"a.txt","fileSize":6.0})");
    deliver(R"({"action":"file_chunk","fileName":"a.txt","fileData":"YWJj"})");
    EXPECT_FALSE(isCompleted());
    deliver(R"({"action":"file_chunk","fileName":"a.txt","fileData":"ZGVm","isLast":true})");
    EXPECT_TRUE(isCompleted());
    EXPECT_EQ(content("a.txt"), "abcdef");
    EXPECT_EQ(store().fileTransfers.get().front().fileSize, 6);
}

TEST_F(IncomingFileDispatchTest, FinishesAWholeFileWhateverItSaysOfItself) {
    deliver(R"({"action":"file_transfer_start","fileName":"a.txt"})");
    EXPECT_EQ(store().fileTransfers.get().front().fileSize, 0);
    deliver(R"({"action":"file_transfer","fileName":"a.txt","fileData":"YWJj","isLast":false})");
    EXPECT_TRUE(isCompleted());
    EXPECT_EQ(content("a.txt"), "abc");
}

TEST_F(IncomingFileDispatchTest, TakesOnlyABooleanForTheEnd) {
    deliver(R"({"action":"file_transfer_start","fileName":"a.txt","fileSize":"6"})");
    EXPECT_EQ(store().fileTransfers.get().front().fileSize, 0);
    deliver(R"({"action":"file_chunk","fileName":"a.txt","fileData":"YWJj","isLast":"true"})");
    deliver(R"({"action":"file_chunk","fileName":"a.txt","fileData":"YWJj","isLast":1})");
    EXPECT_FALSE(isCompleted());
}

TEST_F(IncomingFileDispatchTest, PassesOverPiecesWithoutANameOrData) {
    for (const char* message :
         {R"({"action":"file_transfer_start","fileSize":6})",
          R"({"action":"file_transfer_start","fileName":5})", R"({"action":"file_chunk","fileName":"a.txt"})",
          R"({"action":"file_chunk","fileData":"YWJj"})",
          R"({"action":"file_transfer","fileName":"a.txt","fileData":5})"}) {
        expectNoEffect(message);
    }
}

} // namespace

} // namespace velloway::test
