#include "tabs/SettingsTab.h"

#include "text/WholeNumber.h"

namespace velloway {

namespace {

constexpr std::int64_t lowBattery = 20;

std::optional<BatteryLabel> batteryLabel(const HistoryStore& store) {
    const auto& level = store.batteryLevel.get();
    if (!level) {
        return std::nullopt;
    }
    return BatteryLabel{.symbol = store.isCharging.get() ? "battery.100.bolt" : "battery.100",
                        .color = *level < lowBattery ? ColorRole::red : ColorRole::primary,
                        .text = std::to_string(*level) + "%"};
}

} // namespace

StatusRow statusRow(const HistoryStore& store) {
    const auto& address = store.connectedRemoteIP.get();
    if (!address) {
        return {.isConnected = false,
                .symbol = "exclamationmark.triangle.fill",
                .color = ColorRole::red,
                .headline = "Not Connected",
                .detail = "Download 'Velloway Android' and enter this IP and Port in the app settings to link "
                          "your devices."};
    }
    return {.isConnected = true,
            .symbol = "checkmark.circle.fill",
            .color = ColorRole::green,
            .headline = store.connectedDeviceName.get(),
            .detail = store.connectedWifiName.get().value_or("IP: " + *address),
            .battery = batteryLabel(store)};
}

NotificationPermissionRow notificationPermissionRow(AuthorizationStatus status) {
    switch (status) {
    case AuthorizationStatus::notDetermined:
        return NotificationPermissionRow::requestPermission;
    case AuthorizationStatus::denied:
        return NotificationPermissionRow::openSettings;
    case AuthorizationStatus::authorized:
    case AuthorizationStatus::provisional:
    case AuthorizationStatus::ephemeral:
        return NotificationPermissionRow::enabled;
    case AuthorizationStatus::unknown:
        break;
    }
    return NotificationPermissionRow::none;
}

std::string portText(std::int64_t port, const std::string& locale) {
    return wholeNumberText(port, locale);
}

std::optional<std::int64_t> parsePort(std::string_view text, const std::string& locale) {
    return parseWholeNumber(text, locale);
}

} // namespace velloway
