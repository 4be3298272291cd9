#pragma once

#include "features/BatteryAlerts.h"
#include "features/CallEvents.h"
#include "features/ClipboardSync.h"
#include "features/IncomingFiles.h"
#include "features/NotificationManager.h"
#include "platform/Host.h"
#include "platform/Log.h"
#include "remote/CommandRouter.h"
#include "state/AppNotificationCenter.h"
#include "state/StoreLink.h"

#include <cstddef>
#include <memory>
#include <string_view>

namespace velloway {

/// The one entry for everything that the phone says: reads a message and hands finished values on.
/// Server queue only.
class MessageDispatch {
public:
    /// What the messages end in. All of it must outlive the dispatch and the jobs that it leaves behind.
    struct Targets {
        DispatchQueue& main;
        std::weak_ptr<StoreLink> link;
        AppNotificationCenter& notifications;
        NotificationManager& notificationManager;
        CallEvents& callEvents;
        IncomingFiles& incomingFiles;
        ClipboardSync& clipboardSync;
        BatteryAlerts& batteryAlerts;
        CommandRouter& commandRouter;
        const Host& host;
        Log& log;
    };

    explicit MessageDispatch(const Targets& targets);
    ~MessageDispatch();

    /// Takes the bytes of one whole message; `readableAfter` bytes after them may be read. Never fails to its
    /// caller.
    void handle(std::string_view data, std::size_t readableAfter);

private:
    class Reading;
    Targets targets_;
    std::unique_ptr<Reading> reading_;
};

} // namespace velloway
