#pragma once

#include "tabs/PhoneState.h"
#include "tabs/StoredField.h"
#include "tabs/TabTable.h"
#include "tabs/calls/CallsModel.h"
#include "tabs/clipboard/ClipboardModel.h"
#include "tabs/filedrop/FileDropModel.h"
#include "tabs/info/InfoModel.h"
#include "tabs/notifications/NotificationsModel.h"
#include "tabs/remote/RemoteModel.h"
#include "tabs/settings/SettingsModel.h"
#include "tabs/sms/SmsModel.h"

#include <cstdint>
#include <memory>

namespace velloway {

enum class ColumnVisibility { automatic, all, doubleColumn, detailOnly };

/// What stands behind the one main window: the chosen tab, the state that tabs share and the model of each tab.
/// A view shows the values that they give and reports what the user does; it decides nothing.
///
/// Main thread only. A view binds a control to the field of that name, both ways: assigning a field does all
/// that follows from the change. Only `selectedTab` and `settings.port` outlive the view: they follow the user
/// defaults and write to them.
class SettingsView : public WindowContent {
public:
    using Dependencies = TabDependencies;

    static std::shared_ptr<SettingsView> make(const Dependencies& dependencies);
    SettingsView(const SettingsView&) = delete;
    SettingsView& operator=(const SettingsView&) = delete;

private:
    explicit SettingsView(const Dependencies& dependencies);
    const Dependencies dependencies_;

public:
    const std::shared_ptr<HistoryStore> history;
    Observable<ColumnVisibility> columnVisibility{ColumnVisibility::all};
    StoredField selectedTab;

    PhoneState phone;
    CallsModel calls;
    SmsModel sms;
    FileDropModel fileDrop;
    NotificationsModel notifications;
    RemoteModel remote;
    ClipboardModel clipboard;
    SettingsModel settings;
    InfoModel info;

    /// The window's content came on screen; the appearance of the shown tab follows.
    void viewAppears();
    /// The content of a tab came on screen by a change of tab.
    void tabAppears(std::int64_t tab);
    void applicationDidBecomeActive() { remote.refreshAccessibilityStatus(); }
};

} // namespace velloway
