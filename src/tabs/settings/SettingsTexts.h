#pragma once

#include "tabs/Texts.h"

namespace velloway {

inline constexpr auto settingsTexts = std::to_array<TextEntry>({
    {"serverSection", "Server & Network"},
    {"serverFooter",
     "Tip: For a permanent connection, reserve this IP address for your Mac in your router's DHCP settings. "
     "This prevents the address from changing and disconnecting your Android device."},
    {"status", "Status"},
    {"localIP", "Local IP"},
    {"copySymbol", "doc.on.doc"},
    {"port", "Port"},
    {"portPrompt", "8765"},
    {"restart", "Restart"},
    {"notificationsSection", "Notifications"},
    {"requestPermission", "Request Permission"},
    {"blocked", "Blocked - Open System Settings"},
    {"enabled", "Enabled"},
    {"enabledSymbol", "bell.badge.fill"},
    {"generalSection", "General"},
    {"launchAtLogin", "Launch at login"},
});

} // namespace velloway
