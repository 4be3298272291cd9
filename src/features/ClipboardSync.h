#pragma once

#include "features/NotificationManager.h"
#include "platform/DispatchQueue.h"
#include "platform/Pasteboard.h"
#include "state/StoreLink.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace velloway {

/// Puts text from the phone on the pasteboard the moment it arrives.
class ClipboardSync {
public:
    /// The pasteboard and the notifications must outlive every job on the main queue.
    ClipboardSync(DispatchQueue& main, std::shared_ptr<StoreLink> link, Pasteboard& pasteboard,
                  NotificationManager& notifications);

    /// Server queue. The job that follows on the main queue runs even if the server has gone by then.
    void receive(std::string text);

private:
    DispatchQueue& main_;
    std::shared_ptr<StoreLink> link_;
    Pasteboard& pasteboard_;
    NotificationManager& notifications_;
};

/// What "send the clipboard" sends: the pasteboard's plain text, or nothing when there is none or it is empty.
/// Calls `done` as `Pasteboard::readString` does. Main thread.
void readTextToSend(Pasteboard& pasteboard, std::function<void(std::optional<std::string>)> done);

} // namespace velloway
