#include "bridge/SettingsBridge.h"

namespace velloway {

SettingsBridge::SettingsBridge(SettingsModel& model)
    : TabBridge(QStringLiteral("SettingsTab.qml")), model_(model), port_(editedPort_, model.pasteboard()) {
    follow(model.serverRestartNeeded, &SettingsBridge::serverRestartNeededChanged);
    follow(model.launchAtLogin, &SettingsBridge::launchAtLoginChanged);
    follow(model.status, [this] { readStatus(); });
    follow(model.localIP,
           [this] { show(localIP_, toQt(model_.localIP.get()), &SettingsBridge::localIPChanged); });
    follow(model.portText, [this] {
        if (portText_ != model_.portText.get()) {
            readPort();
        }
    });
    follow(model.notificationPermission, [this] { readPermission(); });
}

void SettingsBridge::readStatus() {
    const StatusRow row = model_.status.get();
    StatusState next{.isConnected = row.isConnected,
                     .symbol = toQt(row.symbol),
                     .color = toQt(row.color),
                     .hasHeadline = row.headline.has_value(),
                     .headline = cut(row.headline, lineBytes),
                     .detail = cut(row.detail, lineBytes)};
    if (row.battery) {
        next.hasBattery = true;
        next.batterySymbol = toQt(row.battery->symbol);
        next.batteryColor = toQt(row.battery->color);
        next.batteryText = toQt(row.battery->text);
    }
    show(status_, std::move(next), &SettingsBridge::statusChanged);
}

void SettingsBridge::readPort() {
    portText_ = model_.portText.get();
    editedPort_.set(portText_);
}

void SettingsBridge::readPermission() {
    const NotificationPermissionRow row = model_.notificationPermission.get();
    show(permission_, static_cast<Permission>(row), &SettingsBridge::permissionChanged);
}

void SettingsBridge::commitPort() {
    model_.commitPort(editedPort_.get());
    readPort();
}

void SettingsBridge::commitEditedPort() {
    if (editedPort_.get() != portText_) {
        commitPort();
    }
}

} // namespace velloway
