#pragma once

#include "platform/UserNotificationCenter.h"
#include "state/HistoryStore.h"
#include "tabs/Style.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velloway {

struct BatteryLabel {
    std::string_view symbol;
    ColorRole color = ColorRole::primary;
    std::string text;

    bool operator==(const BatteryLabel&) const = default;
};

/// The row "Status".
struct StatusRow {
    bool isConnected = false;
    std::string_view symbol;
    /// Of the symbol; when not connected, of the headline too.
    ColorRole color = ColorRole::green;
    /// Absent: no line at all.
    std::optional<std::string> headline;
    std::string detail;
    std::optional<BatteryLabel> battery;

    bool operator==(const StatusRow&) const = default;
};

StatusRow statusRow(const HistoryStore& store);

/// The row of the section "Notifications".
enum class NotificationPermissionRow { none, requestPermission, openSettings, enabled };

NotificationPermissionRow notificationPermissionRow(AuthorizationStatus status);

/// How the port field shows a port: in the digits of the locale, without grouping.
std::string portText(std::int64_t port, const std::string& locale);
/// What the port field takes an edited text for; absent when it is no whole number.
std::optional<std::int64_t> parsePort(std::string_view text, const std::string& locale);

namespace settingsTexts {
inline constexpr std::string_view serverSection = "Server & Network";
inline constexpr std::string_view serverFooter =
    "Tip: For a permanent connection, reserve this IP address for your Mac in your router's DHCP settings. "
    "This "
    "prevents the address from changing and disconnecting your Android device.";
inline constexpr std::string_view status = "Status";
inline constexpr std::string_view localIP = "Local IP";
inline constexpr std::string_view copySymbol = "doc.on.doc";
inline constexpr std::string_view port = "Port";
inline constexpr std::string_view portPrompt = "8765";
inline constexpr std::string_view restart = "Restart";
inline constexpr std::string_view notificationsSection = "Notifications";
inline constexpr std::string_view requestPermission = "Request Permission";
inline constexpr std::string_view blocked = "Blocked - Open System Settings";
inline constexpr std::string_view enabled = "Enabled";
inline constexpr std::string_view enabledSymbol = "bell.badge.fill";
inline constexpr std::string_view generalSection = "General";
inline constexpr std::string_view launchAtLogin = "Launch at login";
} // namespace settingsTexts

} // namespace velloway
