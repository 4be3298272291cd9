// On which queue the server does what it does.

#include "fakes/ServerHarness.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace velloway::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

class WatchedInput : public FakeInputEvents {
public:
    WatchedInput(const FakeDispatchQueue& main, int& faults) : main_(main), faults_(faults) {}

    void movePointer(double dx, double dy) override {
        faults_ += main_.isCurrent() ? 0 : 1;
        FakeInputEvents::movePointer(dx, dy);
    }
    void click(MouseButton button) override {
        faults_ += main_.isCurrent() ? 0 : 1;
        FakeInputEvents::click(button);
    }

private:
    const FakeDispatchQueue& main_;
    int& faults_;
};

class WatchedScripts : public FakeScripts {
public:
    WatchedScripts(const FakeDispatchQueue& main, int& faults) : main_(main), faults_(faults) {}

    std::optional<std::string> run(const SystemScript& script) override {
        faults_ += main_.isCurrent() ? 0 : 1;
        return FakeScripts::run(script);
    }

private:
    const FakeDispatchQueue& main_;
    int& faults_;
};

/// The clipboard and the notifications of the desktop.
class WatchedPasteboard : public FakePasteboard {
public:
    WatchedPasteboard(const FakeDispatchQueue& main, int& faults) : main_(main), faults_(faults) {}

    bool setString(std::string_view text) override {
        faults_ += main_.isCurrent() ? 0 : 1;
        return FakePasteboard::setString(text);
    }

private:
    const FakeDispatchQueue& main_;
    int& faults_;
};

class WatchedNotificationCenter : public FakeUserNotificationCenter {
public:
    explicit WatchedNotificationCenter(const FakeDispatchQueue& main) : main_(main) {}

    void add(const NotificationRequest& request,
             std::function<void(const std::optional<std::string>&)> completion) override {
        (main_.isCurrent() ? onMain : elsewhere).push_back(request.content.title);
        FakeUserNotificationCenter::add(request, std::move(completion));
    }

    std::vector<std::string> onMain;
    std::vector<std::string> elsewhere;

private:
    const FakeDispatchQueue& main_;
};

/// A server whose files are read on a queue of their own, and a note of every effect that is seen on another
/// queue than the main one.
class ServerQueuesTest : public testing::Test, protected ServerHarness {
protected:
    ServerQueuesTest() {
        on.host.downloads = "/home/me";
        server = WebSocketServer::make({.main = on.main,
                                        .queue = on.server,
                                        .fileQueue = on.fileQueue,
                                        .readingQueue = reading,
                                        .network = on.network,
                                        .userDefaults = on.userDefaults,
                                        .pasteboard = pasteboard,
                                        .input = input,
                                        .scripts = scripts,
                                        .accessibility = on.accessibility,
                                        .host = on.host,
                                        .files = on.files,
                                        .memory = on.memory,
                                        .log = on.log,
                                        .notificationManager = manager,
                                        .notifications = notifications});
        server->setHistoryStore(store);
        listen();
        phone = connect();
        watch("items", store->items);
        watch("SIMs", store->availableSIMs);
        watch("transfers", store->fileTransfers);
        watch("clipboard", store->clipboardHistory);
        watch("address", store->connectedRemoteIP);
        watch("Wi-Fi", store->connectedWifiName);
        watch("device", store->connectedDeviceName);
        watch("level", store->batteryLevel);
        watch("charging", store->isCharging);
        watch("call", store->incomingCallInfo);
        for (const auto notification :
             {AppNotification::callDurationUpdated, AppNotification::smsHistoryUpdated,
              AppNotification::callHistoryUpdated}) {
            subscriptions_.push_back(notifications.observe(
                notification, [this, notification](const auto&) { note(std::string(name(notification))); }));
        }
    }

    template <class Value> void watch(const char* name, Observable<Value>& value) {
        subscriptions_.push_back(value.observe([this, name](const Value&) { note(name); }));
    }
    void note(std::string name) {
        faults += on.main.isCurrent() ? 0 : 1;
        seen.push_back(std::move(name));
    }
    /// Lets everything happen but what belongs to the main queue, then that too.
    std::vector<std::string> effectsOf(std::string_view message) {
        seen.clear();
        phone->deliver(message);
        drain(on.server, on.fileQueue, reading);
        EXPECT_THAT(seen, IsEmpty()) << message;
        drain(on.main, on.server, on.fileQueue, reading);
        return std::exchange(seen, {});
    }

    int faults = 0;
    std::vector<std::string> seen;
    FakeDispatchQueue reading;
    WatchedPasteboard pasteboard{on.main, faults};
    WatchedInput input{on.main, faults};
    WatchedScripts scripts{on.main, faults};
    WatchedNotificationCenter center{on.main};
    NotificationManager manager{center, on.host, on.log};
    std::shared_ptr<FakeConnection> phone;

private:
    std::vector<Subscription> subscriptions_;
};

TEST_F(ServerQueuesTest, EveryEffectOfAMessageIsAJobOfTheMainQueue) {
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {R"({"action":"connected","deviceName":"A"})", {"device"}},
        {R"({"action":"device_info","wifiName":"W","deviceName":"B"})", {"Wi-Fi", "device"}},
        {R"({"action":"sms_history","messages":[]})", {"SmsHistoryUpdated"}},
        {R"({"action":"call_history","calls":[]})", {"CallHistoryUpdated"}},
        {R"({"action":"incoming_call","number":"1","duration":3})", {"call", "CallDurationUpdated"}},
        {R"({"action":"call_update","state":"OFFHOOK","duration":4})", {"call", "CallDurationUpdated"}},
        {R"({"action":"call_ended"})", {"call", "CallDurationUpdated"}},
        {R"({"action":"sim_info","sims":[{"slot":0,"carrier":"C"}]})", {"SIMs"}},
        {R"({"action":"clipboard","text":"t"})", {"clipboard"}},
        {R"({"action":"battery_status","level":20})", {"level", "charging"}},
        {R"({"app":"a","title":"b","body":"c"})", {"items"}},
        {R"({"action":"file_transfer_start","fileName":"f","fileSize":3})", {"transfers"}},
        {R"({"action":"file_chunk","fileName":"f","fileData":"aaaa"})", {"transfers"}},
        {R"({"action":"file_transfer","fileName":"f","fileData":"aaaa"})", {"transfers", "transfers"}},
        {R"({"action":"remote_control","command":"m","type":"mouse_move","dx":1})", {}},
        {R"({"action":"remote_control","command":"c","type":"mouse_click"})", {}},
        {R"({"action":"remote_control","command":"vol_up"})", {}},
    };
    for (const auto& [message, effects] : cases) {
        EXPECT_EQ(effectsOf(message), effects) << message;
    }
    EXPECT_EQ(input.posted.size(), 2U);
    EXPECT_EQ(scripts.scripts.size(), 1U);
    EXPECT_EQ(pasteboard.content, "t");
    EXPECT_EQ(faults, 0);
    EXPECT_THAT(center.onMain, ElementsAre("Clipboard Synced", "🔋 B — 20% Battery", "a", "Receiving File...",
                                           "File Received", "File Received"));
    EXPECT_THAT(center.elsewhere, IsEmpty());
}

TEST_F(ServerQueuesTest, TheFactsOfAConnectionAreWrittenOnTheMainQueue) {
    seen.clear();
    const auto second = connectUnready("192.168.1.21");
    second->report(ConnectionState::ready);
    drain(on.server, on.fileQueue, reading);
    EXPECT_THAT(seen, IsEmpty());
    drain(on.main);
    EXPECT_THAT(std::exchange(seen, {}), ElementsAre("address"));

    second->report(ConnectionState::cancelled);
    phone->report(ConnectionState::failed, NetworkError{});
    drain(on.server, on.fileQueue, reading);
    EXPECT_THAT(seen, IsEmpty());
    drain(on.main);
    EXPECT_THAT(std::exchange(seen, {}), ElementsAre("SIMs", "address", "Wi-Fi", "device"));

    server->stop();
    drain(on.server, on.fileQueue, reading);
    EXPECT_THAT(seen, IsEmpty());
    drain(on.main);
    EXPECT_THAT(seen, ElementsAre("SIMs"));
    EXPECT_EQ(faults, 0);
}

TEST_F(ServerQueuesTest, AFileIsReadOnItsQueueAndSentOnTheServerQueue) {
    seen.clear();
    server->sendFile(on.files.put("/home/me/a", "hello"));
    drain(on.main, reading);
    EXPECT_THAT(phone->sent, IsEmpty());
    on.server.runAll();
    EXPECT_EQ(reading.runAll(), 1U) << "it opens the file, and no more";
    EXPECT_THAT(phone->sent, IsEmpty());
    drain(on.server, reading);
    EXPECT_EQ(phone->sent.size(), 2U);
    EXPECT_THAT(center.elsewhere, ElementsAre("File Sent")) << "it does not wait for the main queue";
    EXPECT_THAT(seen, IsEmpty());
    on.main.runAll();
    EXPECT_THAT(seen, ElementsAre("transfers", "transfers"));
    EXPECT_EQ(faults, 0);
}

TEST_F(ServerQueuesTest, AListenerThatHasFailedIsStartedAgainOnTheMainQueue) {
    on.network.listener().report(ListenerState::failed, NetworkError{.localizedDescription = "gone"});
    EXPECT_EQ(on.main.pendingDelayed(), 1U);
    EXPECT_EQ(on.server.pendingDelayed(), 0U);
}

} // namespace
} // namespace velloway::test
