#pragma once

#include "features/NotificationManager.h"
#include "platform/Platform.h"
#include "server/WebSocketServer.h"
#include "shell/AppDelegate.h"
#include "shell/LaunchAtLoginManager.h"
#include "state/AppNotificationCenter.h"
#include "state/HistoryStore.h"
#include "tabs/SettingsView.h"

#include <functional>
#include <memory>

namespace velloway {

class HostRuntime;

/// The program's objects, put together on one host. Built on the main thread before the event loop runs;
/// `delegate` is what the host calls.
class Program {
public:
    /// The platform must outlive the program. `terminate` ends the event loop.
    Program(const Platform& platform, std::function<void()> terminate);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    AppDelegate& delegate() { return *delegate_; }
    const std::shared_ptr<AppDelegate>& sharedDelegate() const { return delegate_; }
    const std::shared_ptr<WebSocketServer>& sharedServer() const { return server_; }
    WebSocketServer& server() { return *server_; }
    HistoryStore& historyStore() { return *historyStore_; }
    AppNotificationCenter& notifications() { return notifications_; }

private:
    std::shared_ptr<SettingsView> makeSettingsView(const Platform& on);

    AppNotificationCenter notifications_;
    NotificationManager notificationManager_;
    LaunchAtLoginManager launchAtLogin_;
    std::shared_ptr<WebSocketServer> server_;
    std::shared_ptr<HistoryStore> historyStore_;
    std::shared_ptr<AppDelegate> delegate_;
};

/// Runs the program on `host` until it ends, and returns the exit code of the process.
int runProgram(HostRuntime& host);

} // namespace velloway
