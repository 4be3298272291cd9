// Every key of every message, with a value of every type that it must not have.

#include "server/DispatchFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <algorithm>
#include <initializer_list>
#include <limits>
#include <sstream>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace velloway::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

enum class Type { text, integer, real, boolean, list };

/// A value of each type that is not `type`. A null counts as missing and a whole number as real.
std::vector<std::string> otherThan(Type type) {
    std::vector<std::pair<Type, std::string>> values{{Type::text, R"("7")"},
                                                     {Type::integer, "7"},
                                                     {Type::real, "7.5"},
                                                     {Type::boolean, "true"},
                                                     {Type::list, "[]"}};
    std::vector<std::string> others{"{}"};
    for (const auto& [kind, value] : values) {
        if (kind != type && !(type == Type::real && kind == Type::integer)) {
            others.push_back(value);
        }
    }
    return others;
}

struct Key {
    std::string name;
    std::string value;
    Type type;
};

struct Message {
    /// Empty for the mirrored notification.
    std::string action;
    std::vector<Key> keys;
};

/// Every effect of one message, as text; of a phone that has begun to send a file.
std::string effectsOf(const std::string& message) {
    DispatchBench bench;
    bench.fakes.host.downloads = "/home/me";
    std::ostringstream trace;
    std::vector<Subscription> subscriptions;
    for (const auto kind : {AppNotification::smsHistoryUpdated, AppNotification::callHistoryUpdated,
                            AppNotification::callDurationUpdated}) {
        subscriptions.push_back(bench.notifications.observe(kind, [&trace, kind](const auto& object) {
            trace << name(kind);
            if (const auto* duration = std::get_if<std::int64_t>(&object)) {
                trace << ' ' << *duration;
            }
            trace << '\n';
        }));
    }
    bench.deliver(R"({"action":"file_transfer_start","fileName":"begun","fileSize":100})");
    bench.fakes.log.take();
    bench.deliver(message);

    for (const auto& line : bench.fakes.log.take()) {
        trace << line << '\n';
    }
    const HistoryStore& store = *bench.store;
    trace << store.connectedDeviceName.get().value_or("-") << ' ' << store.connectedWifiName.get().value_or("-")
          << ' ' << store.availableSIMs.get().size() << ' ' << store.batteryLevel.get().value_or(-1) << ' '
          << store.isCharging.get() << '\n';
    if (const auto& call = store.incomingCallInfo.get()) {
        trace << "rings " << call->number << ' ' << call->name.value_or("-") << '\n';
    }
    for (const NotifPayload& item : store.items.get()) {
        trace << item.app << ' ' << item.title << ' ' << item.body.string() << ' ' << item.time << ' '
              << item.key.value_or("-") << '\n';
    }
    for (const FileTransferRecord& row : store.fileTransfers.get()) {
        trace << row.fileName << ' ' << row.fileSize << ' ' << row.isCompleted << ' '
              << bench.fakes.files.content("/home/me/" + row.fileName) << '\n';
    }
    for (const ClipboardRecord& row : store.clipboardHistory.get()) {
        trace << row.text << '\n';
    }
    for (const auto& script : bench.fakes.scripts.scripts) {
        trace << "script " << script.address << '\n';
    }
    trace << bench.fakes.notificationCenter.requests.size() << ' ' << bench.fakes.input.posted.size() << '\n';
    for (const Input& input : bench.fakes.input.posted) {
        trace << input.index();
        if (const auto* moved = std::get_if<MovedPointer>(&input)) {
            trace << ' ' << moved->dx << ',' << moved->dy;
        } else if (const auto* button = std::get_if<MouseButton>(&input)) {
            trace << ' ' << static_cast<int>(*button);
        } else if (const auto* typed = std::get_if<TypedText>(&input)) {
            trace << ' ' << typed->text;
        }
        trace << '\n';
    }
    return trace.str();
}

/// `replaced` has `value` instead of its own; nothing at all when `value` is empty.
std::string textOf(const Message& message, const std::string& replaced, const std::string& value) {
    std::string text = message.action.empty() ? "" : R"("action":")" + message.action + '"';
    for (const Key& key : message.keys) {
        const std::string& chosen = key.name == replaced ? value : key.value;
        if (!chosen.empty()) {
            text += (text.empty() ? "\"" : ",\"") + key.name + "\":" + chosen;
        }
    }
    return "{" + text + "}";
}

std::vector<Message> looseMessages() {
    std::vector<Message> messages{
        {"connected", {{"deviceName", R"("Pixel")", Type::text}}},
        {"device_info", {{"wifiName", R"("Home")", Type::text}, {"deviceName", R"("Pixel")", Type::text}}},
        {"file_transfer_start", {{"fileName", R"("a")", Type::text}, {"fileSize", "6", Type::integer}}},
        {"file_chunk",
         {{"fileName", R"("begun")", Type::text},
          {"fileData", R"("YWJj")", Type::text},
          {"isLast", "true", Type::boolean}}},
        {"file_transfer", {{"fileName", R"("begun")", Type::text}, {"fileData", R"("YWJj")", Type::text}}},
        {"clipboard", {{"text", R"("copied")", Type::text}}},
        {"battery_status", {{"level", "80", Type::integer}, {"isCharging", "true", Type::boolean}}},
        {"remote_control",
         {{"command", R"("c")", Type::text},
          {"type", R"("keyboard_text")", Type::text},
          {"text", R"("abc")", Type::text}}},
        {"remote_control",
         {{"command", R"("c")", Type::text},
          {"type", R"("mouse_move")", Type::text},
          {"dx", "3.5", Type::real},
          {"dy", "-2", Type::real}}},
        {"remote_control",
         {{"command", R"("c")", Type::text},
          {"type", R"("mouse_click")", Type::text},
          {"button", R"("right")", Type::text}}},
        {"remote_control",
         {{"command", R"("open_url")", Type::text}, {"url", R"("https://example.org")", Type::text}}},
    };
    for (const char* action : {"incoming_call", "call_state_changed", "call_update", "call_ended"}) {
        messages.push_back({action,
                            {{"state", R"("RINGING")", Type::text},
                             {"duration", "7.9", Type::real},
                             {"number", R"("5551")", Type::text},
                             {"name", R"("Anna")", Type::text}}});
    }
    return messages;
}

TEST(MessageKeys, OfAnotherTypeCountAsMissing) {
    for (const Message& message : looseMessages()) {
        for (const Key& key : message.keys) {
            const std::string expected = effectsOf(textOf(message, key.name, ""));
            for (const std::string& value : otherThan(key.type)) {
                // A number may come as a number.
                if (key.name == "number" && (value == "7" || value == "7.5")) {
                    continue;
                }
                const std::string text = textOf(message, key.name, value);
                EXPECT_EQ(effectsOf(text), expected) << text;
            }
            const std::string text = textOf(message, key.name, "null");
            EXPECT_EQ(effectsOf(text), expected) << text;
        }
    }
}

TEST(MessageKeys, AreReadFromEveryMessage) {
    for (const Message& message : looseMessages()) {
        const std::string whole = effectsOf(textOf(message, "", ""));
        for (const Key& key : message.keys) {
            const bool isRead =
                message.action != "call_ended" && (key.name != "state" || message.action != "incoming_call");
            EXPECT_EQ(effectsOf(textOf(message, key.name, "")) != whole, isRead)
                << message.action << ", " << key.name;
        }
    }
}

TEST(MessageKeys, OfAnotherTypeLoseAMessageThatIsReadAsAWhole) {
    const std::vector<Message> messages{
        {"",
         {{"app", R"("Chat")", Type::text},
          {"title", R"("Anna")", Type::text},
          {"body", R"("Hi")", Type::text},
          {"time", "5.5", Type::real},
          {"key", R"("k")", Type::text}}},
        {"sms_history", {{"messages", "[{}]", Type::list}}},
        {"call_history", {{"calls", R"([{"number":"1","date":1,"duration":2,"type":3}])", Type::list}}},
        {"sim_info", {{"sims", R"([{"slot":0,"carrier":"One"}])", Type::list}}},
    };
    const std::string nothing = effectsOf("{}");
    for (const Message& message : messages) {
        EXPECT_NE(effectsOf(textOf(message, "", "")), nothing) << message.action;
        for (const Key& key : message.keys) {
            for (const std::string& value : otherThan(key.type)) {
                const std::string text = textOf(message, key.name, value);
                EXPECT_EQ(effectsOf(text), nothing) << text;
            }
        }
    }
}

class MessageValuesTest : public testing::Test {
protected:
    void deliver(std::string_view message) { bench.deliver(message); }
    std::vector<std::string> identifiers() const {
        std::vector<std::string> all;
        for (const auto& request : bench.fakes.notificationCenter.requests) {
            all.push_back(request.identifier);
        }
        return all;
    }

    DispatchBench bench;
    HistoryStore& store = *bench.store;
    FakePlatform& fakes = bench.fakes;
};

TEST_F(MessageValuesTest, ARightClickIsOfTheRightButtonAndALeftOneOfTheLeft) {
    deliver(R"({"action":"remote_control","command":"c","type":"mouse_click","button":"right"})");
    ASSERT_THAT(fakes.input.posted, testing::Not(IsEmpty()));
    EXPECT_EQ(fakes.input.posted.back(), Input(MouseButton::right));
    deliver(R"({"action":"remote_control","command":"c","type":"mouse_click"})");
    EXPECT_EQ(fakes.input.posted.back(), Input(MouseButton::left));
}

TEST_F(MessageValuesTest, AnAddressIsOpenedOnlyWhenItIsText) {
    deliver(R"({"action":"remote_control","command":"open_url","url":"https:\/\/example.org"})");
    ASSERT_THAT(fakes.scripts.scripts, SizeIs(1));
    EXPECT_EQ(fakes.scripts.scripts[0].address, "https://example.org");
    for (const char* url : {"5", "null", "[]", "{}", "true"}) {
        deliver(std::string(R"({"action":"remote_control","command":"open_url","url":)") + url + "}");
        EXPECT_THAT(fakes.scripts.scripts, SizeIs(1)) << url;
    }
}

TEST_F(MessageValuesTest, AFractionIsNotALevelAndBringsNoAlert) {
    deliver(R"({"action":"battery_status","level":40})");
    deliver(R"({"action":"battery_status","level":15.5})");
    EXPECT_EQ(store.batteryLevel.get(), std::nullopt);
    EXPECT_THAT(fakes.notificationCenter.requests, IsEmpty());
}

TEST_F(MessageValuesTest, AFractionIsNotASize) {
    fakes.host.downloads = "/home/me";
    deliver(R"({"action":"file_transfer_start","fileName":"a","fileSize":6.5})");
    EXPECT_EQ(store.fileTransfers.get().front().fileSize, 0);
}

TEST_F(MessageValuesTest, AnIntegerBelow64BitsIsNotOne) {
    fakes.host.downloads = "/home/me";
    deliver(R"({"action":"file_transfer_start","fileName":"a","fileSize":-9223372036854775809})");
    EXPECT_EQ(store.fileTransfers.get().front().fileSize, 0);
    deliver(R"({"action":"file_transfer_start","fileName":"b","fileSize":-9223372036854775808})");
    EXPECT_EQ(store.fileTransfers.get().front().fileSize, std::numeric_limits<std::int64_t>::min());
}

TEST_F(MessageValuesTest, AnEmptyKeyIsAKey) {
    deliver(R"({"app":"Chat","title":"Anna","body":"Hi","key":""})");
    EXPECT_EQ(store.items.get().front().key, "");
    EXPECT_THAT(identifiers(), ElementsAre(""));
}

TEST_F(MessageValuesTest, AnEmptyNameOfACallIsAName) {
    deliver(R"({"action":"incoming_call","number":"1","name":""})");
    EXPECT_EQ(store.incomingCallInfo.get(), (IncomingCallInfo{.number = "1", .name = ""}));
}

TEST_F(MessageValuesTest, TheNumberOfACallIsTrimmedInTheLogToo) {
    deliver("{\"action\":\"incoming_call\",\"number\":\" 555 1\\n\"}");
    EXPECT_THAT(fakes.log.take(), ElementsAre("[WebSocketServer] Call Event: incoming_call",
                                              "[WebSocketServer] Setting Banner Info: 555 1"));
}

TEST_F(MessageValuesTest, ANotificationIsListedAndThenShownInOneJob) {
    const auto subscription = store.items.observe([&](const auto&) { fakes.journal.note("listed"); });
    bench.handle(R"({"app":"Chat","title":"Anna","body":"Hi","key":"k"})");
    EXPECT_EQ(fakes.main.pending(), 1u);
    fakes.main.runOne();
    EXPECT_THAT(fakes.journal.take(), ElementsAre("listed", "add k"));
}

TEST_F(MessageValuesTest, EveryNotificationIsListedAlsoOneOfAKeyOrABodyThatIsThere) {
    deliver(R"({"app":"Chat","title":"Anna","body":"Hi","key":"k"})");
    deliver(R"({"app":"Chat","title":"Anna","body":"Hi","key":"k"})");
    deliver(R"({"app":"Chat","title":"+49 151 1234567","body":"Hi","key":"l"})");
    ASSERT_THAT(store.items.get(), SizeIs(3));
    EXPECT_EQ(store.items.get()[0].key, "l");
    EXPECT_THAT(identifiers(), ElementsAre("k", "k")) << "the copy with a number is not shown";
}

#ifdef __GLIBC__
TEST_F(MessageValuesTest, TheMemoryOfALargeMessageIsGivenBackAtOnce) {
    const auto bytesInUse = [] {
        const auto statistics = mallinfo2();
        return statistics.uordblks + statistics.hblkhd;
    };
    std::string text;
    while (text.size() < 20'000'000) {
        text += "\u00E9";
    }
    deliver("{}");
    const std::size_t before = bytesInUse();
    deliver(R"({"action":"unknown","text":")" + text + "\"}");
    EXPECT_LT(bytesInUse(), before + 5'000'000);
}
#endif

TEST_F(MessageValuesTest, ALargeBodyIsHeldOnce) {
    deliver(R"({"app":"Chat","title":"Anna","body":" )" + std::string(1 << 20, 'x') + R"(","key":"k"})");
    const std::string* listed = &store.items.get().front().body.string();
    EXPECT_EQ(listed, &fakes.notificationCenter.requests.front().content.body.string());
}

} // namespace

} // namespace velloway::test
