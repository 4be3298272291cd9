#pragma once

#include "platform/Accessibility.h"
#include "platform/DispatchQueue.h"
#include "platform/Pasteboard.h"
#include "platform/UserDefaults.h"
#include "platform/UserNotificationCenter.h"
#include "platform/Windows.h"
#include "platform/Workspace.h"
#include "server/WebSocketServer.h"
#include "state/AppNotificationCenter.h"
#include "state/HistoryStore.h"
#include "tabs/CallsTab.h"
#include "tabs/ClipboardTab.h"
#include "tabs/FileDropTab.h"
#include "tabs/InfoTab.h"
#include "tabs/NotificationsTab.h"
#include "tabs/RemoteTab.h"
#include "tabs/SettingsTab.h"
#include "tabs/SmsTab.h"
#include "tabs/Style.h"
#include "tabs/TabTable.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velloway {

enum class ColumnVisibility { automatic, all, doubleColumn, detailOnly };

/// A running clock of a call; none is ever started.
struct CallTimer {
    Instant started;
};

/// What stands behind the one main window: the state of all eight tabs, what they show and what their controls
/// do. A view shows the values that it gives and reports what the user does; it decides nothing.
///
/// Main thread only. A view binds a control to the field of that name, both ways: assigning a field does all
/// that follows from the change.
class SettingsView : public WindowContent, public std::enable_shared_from_this<SettingsView> {
public:
    /// All of it must outlive the view.
    struct Dependencies {
        std::shared_ptr<HistoryStore> history;
        WebSocketServer& server;
        UserDefaults& userDefaults;
        UserNotificationCenter& notificationCenter;
        Accessibility& accessibility;
        Pasteboard& pasteboard;
        Workspace& workspace;
        Windows& windows;
        const Host& host;
        AppNotificationCenter& notifications;
        DispatchQueue& main;
        /// These three lie in the shell, which stands above the tabs.
        std::function<std::string()> localIP;
        std::function<bool()> isLaunchAtLoginEnabled;
        std::function<void(bool enabled)> setLaunchAtLogin;
    };

    static std::shared_ptr<SettingsView> make(const Dependencies& dependencies);
    SettingsView(const SettingsView&) = delete;
    SettingsView& operator=(const SettingsView&) = delete;

    // State. Only `port` and `selectedTab` outlive the view: they follow the user defaults and write to them.

    const std::shared_ptr<HistoryStore> history;
    Observable<std::int64_t> port;
    Observable<bool> launchAtLogin;
    Observable<bool> serverRestartNeeded{false};
    Observable<AuthorizationStatus> notifAuthStatus{AuthorizationStatus::notDetermined};
    Observable<bool> isAccessibilityEnabled;
    Observable<std::vector<std::string>> selectedRecipients;
    Observable<std::string> smsBody;
    Observable<std::int64_t> selectedSimSlot{0};
    Observable<std::string> smsStatus;
    Observable<ColorRole> smsStatusColor{ColorRole::secondary};
    Observable<std::optional<Uuid>> replyingTo;
    Observable<std::string> replyText;
    Observable<std::string> contactQuery;
    Observable<bool> looksNumeric{false};
    Observable<bool> showSuggestions{false};
    Observable<ColumnVisibility> columnVisibility{ColumnVisibility::all};
    Observable<std::vector<SmsRecord>> phoneSmsLog;
    Observable<std::vector<CallRecord>> phoneCallLog;
    Observable<std::int64_t> selectedTab;
    Observable<std::optional<std::string>> activeRecipient;
    Observable<std::string> chatText;
    Observable<std::string> dialpadNumber;
    Observable<bool> isSpeakerOn{false};
    Observable<bool> isMuted{false};
    Observable<std::optional<CallTimer>> timer;
    static constexpr DialButtons dialButtons = dialPadButtons;

    // What the window reports.

    /// The window's content came on screen; the appearance of the shown tab follows.
    void viewAppears();
    /// The content of a tab came on screen, by a change of tab or with the window.
    void tabAppears(std::int64_t tab);
    void applicationDidBecomeActive();

    // What the tabs show now. What comes from the logs alone is worked out once for each change of them.

    /// The values below, as units of redrawing.
    enum class Shown {
        tab,
        smsList,
        smsChat,
        composer,
        dialPad,
        recentCalls,
        notifications,
        fileTransfers,
        clipboard,
        remote,
        settings
    };
    /// Calls back after each change of something that the value is made from. A change that concerns several
    /// fields can call back several times.
    [[nodiscard]] Subscription observe(Shown value, std::function<void()> changed);

    TabContent tabContent() const { return contentFor(selectedTab.get()); }

    SmsList smsList() const;
    /// Absent while no chat is open.
    std::optional<ChatHeader> chatHeader() const;
    std::vector<SmsBubble> smsBubbles() const;
    Composer composer() const;

    DialPad dialPad() const;
    /// Empty: `callsTexts::noRecentCalls` as the only row.
    std::vector<RecentCallRow> recentCallRows() const;

    std::vector<NotificationRow> notificationRows() const;
    NotificationsFooter notificationsFooter() const;

    std::vector<FileTransferRow> fileTransferRows() const;
    bool showsClearFileTransfers() const { return !history->fileTransfers.get().empty(); }

    std::vector<ClipboardRow> clipboardRows() const;
    bool showsClearClipboard() const { return !history->clipboardHistory.get().empty(); }

    bool showsAccessibilityWarning() const { return !isAccessibilityEnabled.get(); }

    StatusRow statusRow() const { return velloway::statusRow(*history); }
    /// Searched anew at each call.
    std::string localIP() const { return on_.localIP(); }
    std::string portText() const;
    NotificationPermissionRow notificationPermissionRow() const {
        return velloway::notificationPermissionRow(notifAuthStatus.get());
    }

    // Conversations over the present logs. The records belong to `phoneSmsLog`, and all of it is valid until
    // that changes.

    const std::vector<Conversation>& conversations() const;
    std::vector<const Conversation*> filteredConversations() const;
    std::vector<const SmsRecord*> activeMessages() const;
    std::string contactName(const std::string& address, const std::optional<std::string>& providedName) const;
    std::string avatarInitials(const std::string& address) const;
    std::string formatDate(double milliseconds) const;
    std::string formatRelativeDate(double milliseconds) const;

    // SMS tab.

    void refreshSmsHistory();
    void clearSearch();
    /// The row "New message to".
    void startNewMessage();
    /// A thread row was pressed.
    void openConversation(const std::string& displayAddress);
    void sendChatMessage();

    // Calls tab.

    void pressDialButton(std::size_t index);
    void deleteLastDigit();
    /// A row of the recent calls was pressed.
    void callBack(const std::string& number);
    void startCall();
    void endCall();
    KeyPressResult pressKey(const KeyPress& press);

    // Notifications tab.

    void openReply(const Uuid& id);
    void sendReply(const Uuid& id);
    void cancelReply();
    void clearNotifications();

    // File Drop and Clipboard tabs.

    void selectFileAndSend();
    void revealFile(const Uuid& transfer);
    void clearFileTransfers();
    void sendCurrentClipboard();
    void copyToClipboard(const Uuid& record);
    void clearClipboard();

    // Remote tab.

    /// `index` is a position in `remoteButtons`.
    void pressRemoteButton(std::size_t index);
    /// False when the key press belongs to no button.
    bool pressRemoteShortcut(const KeyEquivalent& pressed);
    void openAccessibilitySettings();
    void refreshAccessibilityStatus();

    // Settings and Info tabs.

    void copyLocalIP();
    /// Editing of the port field ended with this text. The field then shows `portText` again.
    void commitPort(const std::string& text);
    void restartServer();
    void requestNotificationPermission();
    void openNotificationSettings();
    /// The answer arrives later, on the main queue.
    void refreshNotifStatus();
    void openProfile();

private:
    explicit SettingsView(const Dependencies& dependencies);

    void followUserDefaults();
    void followStore();
    void followOwnFields();
    void followNotifications();
    const CallNames& callNames() const;
    const std::vector<SmsThreadRow>& threadRows() const;

    struct DatedRows {
        RelativeDates dates;
        std::vector<SmsThreadRow> rows;
    };

    Dependencies on_;
    /// Worked out when first asked for, and absent again with every change of the logs that they come from.
    mutable std::optional<std::vector<Conversation>> conversations_;
    mutable std::optional<CallNames> callNames_;
    mutable std::optional<DatedRows> threadRows_;
    /// What a field held before, to tell a change from an assignment of the same value.
    std::int64_t lastPort_ = 0;
    bool lastLaunchAtLogin_ = false;
    std::vector<SimInfo> lastSims_;
    std::vector<Subscription> cancellables_;
};

} // namespace velloway
