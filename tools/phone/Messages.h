#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// The text of every message that a phone says by itself. An absent value is left out of the message.
namespace velloway::phone::messages {

std::string connected(std::string_view deviceName);
std::string deviceInfo(std::optional<std::string_view> wifiName, std::optional<std::string_view> deviceName);

struct Notification {
    std::string app;
    std::string title;
    std::string body;
    std::optional<std::string> key;
    /// Seconds since 1970.
    std::optional<double> time;
};
std::string notification(const Notification& notification);

/// `carriers` are separated by commas; the first is slot 0.
std::string simInfo(std::string_view carriers);

std::string incomingCall(std::string_view number, std::string_view name);
std::string callState(std::string_view state, std::string_view number, std::string_view name);
std::string callUpdate(std::int64_t seconds);
std::string callEnded();

std::string clipboard(std::string_view text);
std::string batteryStatus(std::int64_t level, bool isCharging);

std::string remoteControl(std::string_view command, std::string_view type);
std::string pointerMove(double dx, double dy);
std::string pointerClick(std::string_view button);
std::string typedText(std::string_view text);
std::string openUrl(std::string_view url);

std::string fileTransferStart(std::string_view fileName, std::int64_t fileSize);

} // namespace velloway::phone::messages
