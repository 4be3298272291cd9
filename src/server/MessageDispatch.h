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
#include <functional>
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

    using Keep = std::function<std::shared_ptr<const void>()>;

    explicit MessageDispatch(const Targets& targets);
    ~MessageDispatch();

    /// Takes the bytes of one whole message; `readableAfter` bytes after them may be read. Never fails to its
    /// caller.
    ///
    /// Files go on in the background, and are counted in `backlog`. Messages of a phone take effect in their
    /// order, so one behind files that are not finished has to wait: then nothing happens, false is returned,
    /// and the message is to be handed over again once the backlog is empty. Remote control never waits.
    /// Without a backlog nothing does. `keep` is that of `ReceivedContent`, for `data`.
    bool handle(std::string_view data, std::size_t readableAfter,
                const std::shared_ptr<FileBacklog>& backlog = nullptr, const Keep& keep = nullptr);

private:
    class Reading;
    Targets targets_;
    std::unique_ptr<Reading> reading_;
};

} // namespace velloway
