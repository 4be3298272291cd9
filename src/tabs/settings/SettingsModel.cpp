#include "tabs/settings/SettingsModel.h"

#include "text/Utf8.h"
#include "text/WholeNumber.h"

#include <utility>

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
    const auto& device = store.connectedDeviceName.get();
    const auto& wifi = store.connectedWifiName.get();
    return {.isConnected = true,
            .symbol = "checkmark.circle.fill",
            .color = ColorRole::green,
            .headline = device ? std::optional(std::string(head(*device, rowBytes))) : std::nullopt,
            .detail =
                wifi ? std::string(head(*wifi, rowBytes)) : "IP: " + std::string(head(*address, rowBytes)),
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

SettingsModel::SettingsModel(const TabDependencies& dependencies)
    : port(dependencies.userDefaults, "port", WebSocketServer::defaultPort),
      launchAtLogin(dependencies.isLaunchAtLoginEnabled()),
      status([this] { return statusRow(*with_.history); }, dependencies.history->connectedRemoteIP,
             dependencies.history->connectedWifiName, dependencies.history->connectedDeviceName,
             dependencies.history->batteryLevel, dependencies.history->isCharging),
      portText([this] { return velloway::portText(port.get(), with_.host.locale()); }, port),
      notificationPermission([this] { return notificationPermissionRow(notifAuthStatus.get()); },
                             notifAuthStatus),
      localIP([this] { return with_.localIP(); }, status, portText, notificationPermission, serverRestartNeeded,
              launchAtLogin),
      with_(dependencies),
      lastPort_(port.get()),
      lastLaunchAtLogin_(launchAtLogin.get()),
      subscriptions_{port.observe([this](std::int64_t value) {
                         if (std::exchange(lastPort_, value) != value) {
                             serverRestartNeeded.set(true);
                         }
                     }),
                     launchAtLogin.observe([this](bool enabled) {
                         if (std::exchange(lastLaunchAtLogin_, enabled) != enabled) {
                             with_.setLaunchAtLogin(enabled);
                         }
                     })} {}

void SettingsModel::copyLocalIP() {
    with_.pasteboard.clearContents();
    with_.pasteboard.setString(localIP.get());
}

void SettingsModel::commitPort(const std::string& text) {
    if (const auto number = parsePort(text, with_.host.locale())) {
        port.set(*number);
    }
}

void SettingsModel::restartServer() {
    with_.server.start();
    serverRestartNeeded.set(false);
}

void SettingsModel::requestNotificationPermission() {
    constexpr unsigned options =
        authorizationOptions::alert | authorizationOptions::sound | authorizationOptions::badge;
    with_.notificationCenter.requestAuthorization(
        options, [&main = with_.main, weak = std::weak_ptr(self_)](bool, const auto&) {
            hop(main, weak, [](SettingsModel& self) { self.refreshNotifStatus(); });
        });
}

void SettingsModel::refreshNotifStatus() {
    with_.notificationCenter.getAuthorizationStatus(
        [&main = with_.main, weak = std::weak_ptr(self_)](AuthorizationStatus answer) {
            hop(main, weak, [answer](SettingsModel& self) { self.notifAuthStatus.set(answer); });
        });
}

} // namespace velloway
