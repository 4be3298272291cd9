#include "server/OutboundMessages.h"

#include "json/JsonWriter.h"

#include <utility>

namespace velloway::outbound {

namespace {

/// Room for the keys, the punctuation and a few escapes.
constexpr std::size_t frameSize = 128;

JsonWriter message(std::string_view action, std::size_t contentSize) {
    JsonWriter writer(frameSize + contentSize);
    writer.add("action", action);
    return writer;
}

std::optional<std::string> finished(JsonWriter writer) {
    if (!writer.isValid()) {
        return std::nullopt;
    }
    return std::move(writer).finish();
}

std::optional<std::string> withText(std::string_view action, std::string_view key, std::string_view text) {
    JsonWriter writer = message(action, text.size());
    writer.add(key, text);
    return finished(std::move(writer));
}

std::string withEnabled(std::string_view action, bool enabled) {
    std::string text = R"({"action":")";
    return text.append(action).append(R"(","enabled":)").append(enabled ? "true}" : "false}");
}

} // namespace

std::optional<std::string> connected(std::string_view deviceName) {
    return withText("connected", "deviceName", deviceName);
}

std::string connectedFallback() {
    return R"({"action":"connected"})";
}

std::string findDevice() {
    return R"({"action":"find_device"})";
}

std::optional<std::string> mediaCommand(std::string_view command) {
    return withText("media_command", "command", command);
}

std::optional<std::string> navCommand(std::string_view command) {
    return withText("nav_command", "command", command);
}

std::string getSmsHistory() {
    return R"({"action":"get_sms_history"})";
}

std::string getCallHistory() {
    return R"({"action":"get_call_history"})";
}

std::optional<std::string> clipboard(std::string_view text) {
    return withText("clipboard", "text", text);
}

std::string makeCall(std::string_view number, std::int64_t simSlot) {
    std::string text = R"({"action":"make_call","number":")";
    return text.append(number).append(R"(","simSlot":)").append(std::to_string(simSlot)).append("}");
}

std::string answerCall() {
    return R"({"action":"answer_call"})";
}

std::string hangupCall() {
    return R"({"action":"hangup_call"})";
}

std::string toggleSpeaker(bool enabled) {
    return withEnabled("toggle_speaker", enabled);
}

std::string toggleMute(bool enabled) {
    return withEnabled("toggle_mute", enabled);
}

std::optional<std::string> reply(const ReplyActionMessage& reply) {
    JsonWriter writer = message("reply", reply.key.size() + reply.message.size());
    writer.add("key", reply.key);
    writer.add("message", reply.message);
    return finished(std::move(writer));
}

std::optional<std::string> sendSms(const SendSmsActionMessage& sms) {
    JsonWriter writer = message("send_sms", sms.number.size() + sms.body.size());
    writer.add("number", sms.number);
    writer.add("body", sms.body);
    writer.add("simSlot", sms.simSlot);
    return finished(std::move(writer));
}

} // namespace velloway::outbound
