#pragma once

#include "tabs/Computed.h"
#include "tabs/PhoneState.h"

#include <optional>
#include <string>
#include <vector>

namespace velloway {

/// One mirrored notification, identified by `id`; its texts as far as a row could show them.
struct NotificationRow {
    Uuid id;
    /// In place of the application's icon.
    std::string letter;
    std::string app;
    std::string time;
    /// Absent when there is nothing to show on that line.
    std::optional<std::string> title;
    std::optional<std::string> body;
    /// The reply box is open.
    bool isReplying = false;

    bool operator==(const NotificationRow&) const = default;
};

NotificationRow notifRow(const NotifPayload& payload, const std::optional<Uuid>& replyingTo,
                         const CallNames& names, const Host& host);

struct NotificationsFooter {
    std::string count;
    bool canClear = false;

    bool operator==(const NotificationsFooter&) const = default;
};

/// The phone's mirrored notifications, and the reply to one of them. Main thread only.
class NotificationsModel {
public:
    NotificationsModel(const TabDependencies& dependencies, PhoneState& phone);

    /// The row whose reply box is open.
    Observable<std::optional<Uuid>> replyingTo;
    /// One text for all rows.
    Observable<std::string> replyText;

    /// In the order of the store.
    const Computed<std::vector<NotificationRow>> rows;
    NotificationsFooter footer() const;

    Pasteboard& pasteboard() const { return with_.pasteboard; }
    void openReply(const Uuid& id) { replyingTo.set(id); }
    void sendReply(const Uuid& id);
    void cancelReply() { replyingTo.set(std::nullopt); }
    void clearNotifications() { with_.history->clear(); }

private:
    const TabDependencies& with_;
    PhoneState& phone_;
};

} // namespace velloway
