#include "phone/Messages.h"

#include <boost/json.hpp>

namespace velloway::phone::messages {

namespace {

namespace json = boost::json;

std::string text(const json::object& message) {
    return json::serialize(message);
}

void addUnlessEmpty(json::object& message, std::string_view key, std::string_view value) {
    if (!value.empty()) {
        message[key] = value;
    }
}

} // namespace

std::string connected(std::string_view deviceName) {
    return text({{"action", "connected"}, {"deviceName", deviceName}});
}

std::string deviceInfo(std::optional<std::string_view> wifiName, std::optional<std::string_view> deviceName) {
    json::object message{{"action", "device_info"}};
    if (wifiName) {
        message["wifiName"] = *wifiName;
    }
    if (deviceName) {
        message["deviceName"] = *deviceName;
    }
    return text(message);
}

std::string notification(const Notification& notification) {
    json::object message{{"app", notification.app}, {"title", notification.title}, {"body", notification.body}};
    if (notification.time) {
        message["time"] = *notification.time;
    }
    if (notification.key) {
        message["key"] = *notification.key;
    }
    return text(message);
}

std::string simInfo(std::string_view carriers) {
    json::array sims;
    while (!carriers.empty()) {
        const std::size_t comma = carriers.find(',');
        sims.push_back(json::object{{"slot", sims.size()}, {"carrier", carriers.substr(0, comma)}});
        carriers = comma == std::string_view::npos ? "" : carriers.substr(comma + 1);
    }
    return text({{"action", "sim_info"}, {"sims", std::move(sims)}});
}

std::string incomingCall(std::string_view number, std::string_view name) {
    json::object message{{"action", "incoming_call"}, {"state", "RINGING"}, {"number", number}};
    addUnlessEmpty(message, "name", name);
    return text(message);
}

std::string callState(std::string_view state, std::string_view number, std::string_view name) {
    json::object message{{"action", "call_state_changed"}, {"state", state}};
    addUnlessEmpty(message, "number", number);
    addUnlessEmpty(message, "name", name);
    return text(message);
}

std::string callUpdate(std::int64_t seconds) {
    return text({{"action", "call_update"}, {"duration", seconds}});
}

std::string callEnded() {
    return text({{"action", "call_ended"}, {"state", "IDLE"}});
}

std::string clipboard(std::string_view value) {
    return text({{"action", "clipboard"}, {"text", value}});
}

std::string batteryStatus(std::int64_t level, bool isCharging) {
    return text({{"action", "battery_status"}, {"level", level}, {"isCharging", isCharging}});
}

std::string remoteControl(std::string_view command, std::string_view type) {
    json::object message{{"action", "remote_control"}, {"command", command}};
    addUnlessEmpty(message, "type", type);
    return text(message);
}

std::string pointerMove(double dx, double dy) {
    return text(
        {{"action", "remote_control"}, {"type", "mouse_move"}, {"command", "move"}, {"dx", dx}, {"dy", dy}});
}

std::string pointerClick(std::string_view button) {
    return text(
        {{"action", "remote_control"}, {"type", "mouse_click"}, {"command", "click"}, {"button", button}});
}

std::string typedText(std::string_view value) {
    return text(
        {{"action", "remote_control"}, {"type", "keyboard_text"}, {"command", "text"}, {"text", value}});
}

std::string openUrl(std::string_view url) {
    return text({{"action", "remote_control"}, {"command", "open_url"}, {"url", url}});
}

std::string fileTransferStart(std::string_view fileName, std::int64_t fileSize) {
    return text({{"action", "file_transfer_start"}, {"fileName", fileName}, {"fileSize", fileSize}});
}

} // namespace velloway::phone::messages
