#pragma once

#include "tabs/Computed.h"
#include "tabs/StoredField.h"
#include "tabs/Style.h"
#include "tabs/TabDependencies.h"

#include <array>
#include <cstdint>
#include <memory>
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

/// The row "Status". Texts are given as far as a row could show them.
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
/// The number that the port field reads from an edited text; absent when it is not a whole number.
std::optional<std::int64_t> parsePort(std::string_view text, const std::string& locale);

/// The connection, and the few options of the program. Main thread only.
class SettingsModel {
public:
    explicit SettingsModel(const TabDependencies& dependencies);

    StoredField port;
    Observable<bool> launchAtLogin;
    Observable<bool> serverRestartNeeded{false};
    Observable<AuthorizationStatus> notifAuthStatus{AuthorizationStatus::notDetermined};

    const Computed<StatusRow> status;
    const Computed<std::string> portText;
    const Computed<NotificationPermissionRow> notificationPermission;
    /// Searched anew at each reading, and worth reading with every other value.
    const Computed<std::string> localIP;

    Pasteboard& pasteboard() const { return with_.pasteboard; }

    /// The tab came on screen.
    void appears() { refreshNotifStatus(); }
    void copyLocalIP();
    /// Editing of the port field ended with this text. The field then shows `portText` again.
    void commitPort(const std::string& text);
    void restartServer();
    void requestNotificationPermission();
    void openNotificationSettings() { with_.workspace.openSettings(SettingsPane::notifications); }
    /// The answer arrives later, on the main queue.
    void refreshNotifStatus();

private:
    const TabDependencies& with_;
    /// To tell a change from an assignment of the same value.
    std::int64_t lastPort_;
    bool lastLaunchAtLogin_;
    std::array<Subscription, 2> subscriptions_;
    /// Owns nothing; answers of the system can arrive after the model has gone.
    const std::shared_ptr<SettingsModel> self_{this, [](SettingsModel*) {}};
};

} // namespace velloway
