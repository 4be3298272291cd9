#include "server/MessageDispatch.h"

#include "json/JsonReader.h"
#include "platform/Fatal.h"
#include "state/RecordDecoding.h"
#include "text/Case.h"
#include "text/Trim.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velloway {

namespace {

// Single values: a key that is missing and one that holds another type are the same.

std::optional<std::string_view> textOf(const JsonValue& message, std::string_view key) {
    const auto value = message.member(key);
    return value ? value->text() : std::nullopt;
}

std::optional<std::int64_t> integerOf(const JsonValue& message, std::string_view key) {
    const auto value = message.member(key);
    return value ? value->integer() : std::nullopt;
}

std::optional<double> realOf(const JsonValue& message, std::string_view key) {
    const auto value = message.member(key);
    return value ? value->real() : std::nullopt;
}

bool isTrue(const JsonValue& message, std::string_view key) {
    const auto value = message.member(key);
    return value && value->boolean().value_or(false);
}

std::int64_t cutTowardZero(double number) {
    constexpr double limit = 9223372036854775808.0;
    const double whole = std::trunc(number);
    if (!(whole >= -limit && whole < limit)) {
        fatal("A number in a call event does not fit a 64-bit integer.");
    }
    return static_cast<std::int64_t>(whole);
}

/// The whole number, or any other number cut toward zero; one that does not fit 64 bits is fatal.
std::optional<std::int64_t> cutInteger(const JsonValue& value) {
    if (const auto integer = value.integer()) {
        return integer;
    }
    const auto real = value.real();
    return real ? std::optional(cutTowardZero(*real)) : std::nullopt;
}

std::optional<std::string> callState(const JsonValue& message) {
    const auto state = textOf(message, "state");
    return state ? std::optional(upperCased(*state)) : std::nullopt;
}

std::optional<std::int64_t> callDuration(const JsonValue& message) {
    const auto duration = message.member("duration");
    return duration ? cutInteger(*duration) : std::nullopt;
}

/// The first key that is there decides, even if its value is of no use.
std::string callNumber(const JsonValue& message) {
    constexpr std::array<std::string_view, 5> keys{"number", "phoneNumber", "incomingNumber", "address",
                                                   "from"};
    for (const std::string_view key : keys) {
        if (const auto value = message.member(key)) {
            if (const auto text = value->text()) {
                return std::string(trimBlanksAndLineEnds(*text));
            }
            const auto number = cutInteger(*value);
            return number ? std::to_string(*number) : std::string();
        }
    }
    return {};
}

} // namespace

class MessageDispatch::Reading {
public:
    explicit Reading(const Targets& targets) : targets_(targets) {}

    bool handle(std::string_view data, std::size_t readableAfter, const IncomingFiles::Backlog& backlog,
                const Keep& keep);

private:
    bool read(std::string_view data, std::size_t readableAfter);

    struct Row;
    /// Each action with its handler.
    static const std::array<Row, 15> table;

    bool act(std::string_view action, const JsonValue& message);
    std::shared_ptr<const void> kept(std::string_view text) const;
    bool hasToWait() const { return backlog_ && !backlog_->isEmpty(); }

    void connected(const JsonValue& message);
    void smsHistory(const JsonValue& message);
    void callHistory(const JsonValue& message);
    template <CallAction action> void callEvent(const JsonValue& message);
    void simInfo(const JsonValue& message);
    void fileStart(const JsonValue& message);
    void wholeFile(const JsonValue& message) { filePiece(message, true); }
    void fileChunk(const JsonValue& message) { filePiece(message, isTrue(message, "isLast")); }
    void filePiece(const JsonValue& message, bool isLast);
    void deviceInfo(const JsonValue& message);
    void clipboard(const JsonValue& message);
    void batteryStatus(const JsonValue& message);
    void remoteControl(const JsonValue& message);
    void notification(const JsonValue& message);

    template <class Step> void onStore(Step step) { withStore(targets_.main, targets_.link, std::move(step)); }
    /// Skipped if by then the server has gone.
    void post(AppNotification notification, AppNotificationObject object);

    const Targets& targets_;
    JsonReader reader_;
    std::string error_;
    // Of the message that is being handled.
    std::string_view data_;
    IncomingFiles::Backlog backlog_;
    const Keep* keep_ = nullptr;
};

bool MessageDispatch::Reading::handle(std::string_view data, std::size_t readableAfter,
                                      const IncomingFiles::Backlog& backlog, const Keep& keep) {
    data_ = data;
    backlog_ = backlog;
    keep_ = &keep;
    const bool isHandled = read(data, readableAfter);
    backlog_.reset();
    reader_.release();
    return isHandled;
}

bool MessageDispatch::Reading::read(std::string_view data, std::size_t readableAfter) {
    const auto message = reader_.parse(data, readableAfter, error_);
    if (!message) {
        targets_.log.line({"[WebSocketServer] JSON parsing failed: ", error_,
                           ". Payload size: ", std::to_string(data.size()), " bytes"});
        return true;
    }
    if (!message->isObject()) {
        targets_.log.line({"[WebSocketServer] Error: Received data is not a valid JSON dictionary."});
        return true;
    }
    if (const auto action = textOf(*message, "action")) {
        return act(*action, *message);
    }
    if (message->member("app")) {
        if (hasToWait()) {
            return false;
        }
        notification(*message);
    }
    return true;
}

struct MessageDispatch::Reading::Row {
    std::string_view action;
    void (Reading::*handler)(const JsonValue& message);
    /// Whether it may take effect while files that were sent before it are not finished: it touches nothing
    /// that they touch, or waits behind them by itself.
    bool overtakesFiles = false;
};

const std::array<MessageDispatch::Reading::Row, 15> MessageDispatch::Reading::table{{
    {"connected", &Reading::connected},
    {"sms_history", &Reading::smsHistory},
    {"call_history", &Reading::callHistory},
    {"incoming_call", &Reading::callEvent<CallAction::incomingCall>},
    {"call_state_changed", &Reading::callEvent<CallAction::callStateChanged>},
    {"call_update", &Reading::callEvent<CallAction::callUpdate>},
    {"call_ended", &Reading::callEvent<CallAction::callEnded>},
    {"sim_info", &Reading::simInfo},
    {"file_transfer_start", &Reading::fileStart, true},
    {"file_transfer", &Reading::wholeFile, true},
    {"file_chunk", &Reading::fileChunk, true},
    {"device_info", &Reading::deviceInfo},
    {"clipboard", &Reading::clipboard},
    {"battery_status", &Reading::batteryStatus},
    {"remote_control", &Reading::remoteControl, true},
}};

bool MessageDispatch::Reading::act(std::string_view action, const JsonValue& message) {
    const auto found =
        std::find_if(table.begin(), table.end(), [&](const Row& row) { return row.action == action; });
    if (found == table.end()) {
        return true;
    }
    if (!found->overtakesFiles && hasToWait()) {
        return false;
    }
    (this->*found->handler)(message);
    return true;
}

void MessageDispatch::Reading::connected(const JsonValue& message) {
    const auto name = textOf(message, "deviceName");
    if (name && !name->empty()) {
        onStore([name = std::string(*name)](HistoryStore& store) { store.connectedDeviceName.set(name); });
    }
}

void MessageDispatch::Reading::smsHistory(const JsonValue& message) {
    if (auto history = decodeSmsHistory(message)) {
        post(AppNotification::smsHistoryUpdated, *std::move(history));
    }
}

void MessageDispatch::Reading::callHistory(const JsonValue& message) {
    if (auto history = decodeCallHistory(message)) {
        post(AppNotification::callHistoryUpdated, *std::move(history));
    }
}

template <CallAction action> void MessageDispatch::Reading::callEvent(const JsonValue& message) {
    targets_.log.line({"[WebSocketServer] Call Event: ", textOf(message, "action").value_or("")});
    CallEvent event{.action = action, .state = callState(message), .duration = callDuration(message)};
    if (!isCallOver(event.action, event.state, event.duration)) {
        event.number = callNumber(message);
        event.name = textOf(message, "name");
    }
    targets_.callEvents.handle(event);
}

void MessageDispatch::Reading::simInfo(const JsonValue& message) {
    if (auto sims = decodeSims(message)) {
        onStore([sims = *std::move(sims)](HistoryStore& store) { store.availableSIMs.set(sims); });
    }
}

void MessageDispatch::Reading::fileStart(const JsonValue& message) {
    if (const auto fileName = textOf(message, "fileName")) {
        targets_.incomingFiles.start(*fileName, integerOf(message, "fileSize").value_or(0), backlog_);
    }
}

void MessageDispatch::Reading::filePiece(const JsonValue& message, bool isLast) {
    const auto fileName = textOf(message, "fileName");
    const auto fileDataValue = message.member("fileData");
    const auto fileData = fileDataValue ? fileDataValue->slashEscapedText() : std::nullopt;
    if (fileName && fileData) {
        targets_.incomingFiles.chunk(*fileName, *fileData, isLast, backlog_, kept(*fileData));
    }
}

/// What keeps the bytes of the message, if that is cheaper than a copy of this text and the text lies in them.
std::shared_ptr<const void> MessageDispatch::Reading::kept(std::string_view text) const {
    constexpr std::size_t leastText = std::size_t{64} << 10;
    const std::less_equal<> isUpTo;
    const bool isInMessage =
        isUpTo(data_.data(), text.data()) && isUpTo(text.data() + text.size(), data_.data() + data_.size());
    return *keep_ && isInMessage && text.size() >= leastText ? (*keep_)() : nullptr;
}

void MessageDispatch::Reading::deviceInfo(const JsonValue& message) {
    // An empty Wi-Fi name is stored, an empty device name is not.
    if (const auto wifiName = textOf(message, "wifiName")) {
        onStore([name = std::string(*wifiName)](HistoryStore& store) { store.connectedWifiName.set(name); });
    }
    connected(message);
}

void MessageDispatch::Reading::clipboard(const JsonValue& message) {
    if (const auto text = textOf(message, "text")) {
        targets_.clipboardSync.receive(std::string(*text));
    }
}

void MessageDispatch::Reading::batteryStatus(const JsonValue& message) {
    targets_.batteryAlerts.report(integerOf(message, "level"), isTrue(message, "isCharging"));
}

void MessageDispatch::Reading::remoteControl(const JsonValue& message) {
    targets_.commandRouter.handle({.command = textOf(message, "command"),
                                   .type = textOf(message, "type"),
                                   .text = textOf(message, "text"),
                                   .button = textOf(message, "button"),
                                   .url = textOf(message, "url"),
                                   .dx = realOf(message, "dx"),
                                   .dy = realOf(message, "dy")});
}

void MessageDispatch::Reading::notification(const JsonValue& message) {
    auto payload = decodeNotifPayload(message, targets_.host);
    if (!payload) {
        return;
    }
    // Two jobs in a row would let another come between the row and the notification.
    targets_.main.async(
        [link = targets_.link, &manager = targets_.notificationManager, payload = *std::move(payload)] {
            const auto alive = link.lock();
            if (const auto store = alive ? alive->historyStore.lock() : nullptr) {
                store->add(payload);
            }
            manager.post(payload);
        });
}

void MessageDispatch::Reading::post(AppNotification notification, AppNotificationObject object) {
    hop(targets_.main, targets_.link,
        [&notifications = targets_.notifications, notification, object = std::move(object)](StoreLink&) {
            notifications.post(notification, object);
        });
}

MessageDispatch::MessageDispatch(const Targets& targets)
    : targets_(targets), reading_(std::make_unique<Reading>(targets_)) {}

MessageDispatch::~MessageDispatch() = default;

bool MessageDispatch::handle(std::string_view data, std::size_t readableAfter,
                             const std::shared_ptr<FileBacklog>& backlog, const Keep& keep) {
    return reading_->handle(data, readableAfter, backlog, keep);
}

} // namespace velloway
