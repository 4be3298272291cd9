#pragma once

#include "bridge/Convert.h"
#include "bridge/FieldText.h"
#include "bridge/TabBridge.h"
#include "tabs/settings/SettingsModel.h"

#include <string>

namespace velloway {

struct StatusState {
    Q_GADGET
    QML_ANONYMOUS
    Q_PROPERTY(bool isConnected MEMBER isConnected)
    Q_PROPERTY(QString symbol MEMBER symbol)
    Q_PROPERTY(QString color MEMBER color)
    Q_PROPERTY(bool hasHeadline MEMBER hasHeadline)
    Q_PROPERTY(QString headline MEMBER headline)
    Q_PROPERTY(QString detail MEMBER detail)
    Q_PROPERTY(bool hasBattery MEMBER hasBattery)
    Q_PROPERTY(QString batterySymbol MEMBER batterySymbol)
    Q_PROPERTY(QString batteryColor MEMBER batteryColor)
    Q_PROPERTY(QString batteryText MEMBER batteryText)

public:
    bool isConnected = false;
    QString symbol;
    QString color;
    bool hasHeadline = false;
    QString headline;
    QString detail;
    bool hasBattery = false;
    QString batterySymbol;
    QString batteryColor;
    QString batteryText;

    bool operator==(const StatusState&) const = default;
};

class SettingsBridge : public TabBridge {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window has it.")
    Q_PROPERTY(velloway::StatusState status READ status NOTIFY statusChanged)
    Q_PROPERTY(QString localIP READ localIP NOTIFY localIPChanged)
    /// The port as it is being edited.
    Q_PROPERTY(velloway::FieldText* port READ port CONSTANT)
    Q_PROPERTY(bool serverRestartNeeded READ serverRestartNeeded NOTIFY serverRestartNeededChanged)
    Q_PROPERTY(bool launchAtLogin READ launchAtLogin WRITE setLaunchAtLogin NOTIFY launchAtLoginChanged)
    Q_PROPERTY(Permission permission READ permission NOTIFY permissionChanged)

public:
    /// The row of the section "Notifications", in the order of the core.
    enum Permission { NoPermissionRow, RequestPermission, OpenSettings, PermissionGiven };
    Q_ENUM(Permission)

    explicit SettingsBridge(SettingsModel& model);

    StatusState status() const { return status_; }
    QString localIP() const { return localIP_; }
    FieldText* port() { return &port_; }
    bool serverRestartNeeded() const { return model_.serverRestartNeeded.get(); }
    bool launchAtLogin() const { return model_.launchAtLogin.get(); }
    void setLaunchAtLogin(bool enabled) { model_.launchAtLogin.set(enabled); }
    Permission permission() const { return permission_; }

    Q_INVOKABLE void copyLocalIP() { model_.copyLocalIP(); }
    /// Editing the port ended. The field then shows the port that holds.
    Q_INVOKABLE void commitPort();
    /// The same if the field was edited.
    Q_INVOKABLE void commitEditedPort();
    Q_INVOKABLE void restartServer() { model_.restartServer(); }
    Q_INVOKABLE void requestNotificationPermission() { model_.requestNotificationPermission(); }
    Q_INVOKABLE void openNotificationSettings() { model_.openNotificationSettings(); }

signals:
    void statusChanged();
    void localIPChanged();
    void serverRestartNeededChanged();
    void launchAtLoginChanged();
    void permissionChanged();

private:
    void readStatus();
    void readPort();
    void readPermission();

    SettingsModel& model_;
    StatusState status_;
    QString localIP_;
    /// As the model last gave it.
    std::string portText_;
    Observable<std::string> editedPort_;
    FieldText port_;
    Permission permission_ = NoPermissionRow;
};

} // namespace velloway
