#pragma once

#include "platform/Accessibility.h"
#include "platform/DispatchQueue.h"
#include "platform/Host.h"
#include "platform/Pasteboard.h"
#include "platform/UserDefaults.h"
#include "platform/UserNotificationCenter.h"
#include "platform/Windows.h"
#include "platform/Workspace.h"
#include "server/WebSocketServer.h"
#include "state/AppNotificationCenter.h"
#include "state/HistoryStore.h"

#include <functional>
#include <memory>
#include <string>

namespace velloway {

/// What the models of the tabs work with. All of it must outlive them.
struct TabDependencies {
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

} // namespace velloway
