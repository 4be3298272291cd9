#pragma once

#include "features/NotificationManager.h"
#include "platform/Accessibility.h"
#include "platform/Application.h"
#include "platform/DispatchQueue.h"
#include "platform/Log.h"
#include "platform/Pasteboard.h"
#include "platform/StatusItem.h"
#include "platform/UserDefaults.h"
#include "platform/UserNotificationCenter.h"
#include "platform/Windows.h"
#include "platform/Workspace.h"
#include "server/WebSocketServer.h"
#include "shell/CallWindows.h"
#include "state/HistoryStore.h"
#include "tabs/SettingsView.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velloway {

/// Owns what is there from launch to exit: the status item with its menu, the main window, the call panels and
/// the answers to the two permissions. Main thread only, but for the two operations of the notification
/// centre's delegate.
class AppDelegate : public ApplicationDelegate,
                    public ServicesProvider,
                    public UserNotificationCenterDelegate,
                    public std::enable_shared_from_this<AppDelegate> {
public:
    /// All of it must outlive the delegate.
    struct Dependencies {
        DispatchQueue& main;
        UserDefaults& userDefaults;
        UserNotificationCenter& notificationCenter;
        Pasteboard& pasteboard;
        Accessibility& accessibility;
        StatusItem& statusItem;
        Application& application;
        Windows& windows;
        Workspace& workspace;
        Log& log;
        WebSocketServer& server;
        AppNotificationCenter& notifications;
        std::shared_ptr<HistoryStore> historyStore;
        /// Makes what the main window shows.
        std::function<std::shared_ptr<SettingsView>()> makeSettingsView;
        /// Ends the process through the platform's own way out.
        std::function<void()> terminate;
    };

    static std::shared_ptr<AppDelegate> make(const Dependencies& dependencies);
    ~AppDelegate() override;

    /// The instance of this process; the composition installs it, and everything else takes a reference.
    static AppDelegate& shared();
    static void setShared(std::shared_ptr<AppDelegate> delegate);

    void applicationDidFinishLaunching() override;
    bool applicationShouldTerminateAfterLastWindowClosed() override;
    bool applicationShouldHandleReopen(bool hasVisibleWindows) override;
    void applicationOpenLinks(const std::vector<std::string>& addresses) override;
    void applicationDidBecomeActive() override;
    void handleSendToAndroidService(const ServicePasteboard& pasteboard) override;

    void onMenuCall();
    void onMenuSms();
    void onMenuFileDrop();
    void onMenuHistory();
    void onMenuRemote();
    void onMenuClipboardHistory();
    void onMenuSettings();
    void onMenuInfo();
    void onMenuSendClipboard();

    /// Stores the tab and brings the main window to the front, building it on first use.
    void showSettings(int tab);

    /// Any thread.
    void didReceive(const NotificationResponse& response, std::function<void()> completion) override;
    /// Any thread.
    void willPresent(const NotificationRequest& request,
                     std::function<void(unsigned options)> completion) override;

private:
    explicit AppDelegate(const Dependencies& dependencies);

    void setupStatusItem();
    void buildMenu();
    MenuItem makeItem(const struct MenuEntry& entry);
    void requestNotificationPermission();
    void askForNotificationPermission();
    void showNotificationDeniedAlert();
    void registerNotificationCategories();
    void checkAccessibilityPermission();
    void setupIncomingCallObservation();
    void setupActiveCallObservation();
    void setupCallEndObservation();
    void buildSettingsWindow();
    void windowWillClose();

    Dependencies on_;
    std::shared_ptr<CallWindows> callWindows_;
    std::shared_ptr<Window> settingsWindow_;
    /// What the window shows; the window owns it.
    std::weak_ptr<SettingsView> settingsView_;
};

} // namespace velloway
