#pragma once

#include "tabs/Conversations.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velloway {

/// One mirrored notification, identified by `id`.
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

std::vector<NotificationRow> notificationRows(const std::vector<NotifPayload>& items,
                                              const std::optional<Uuid>& replyingTo, const CallNames& names,
                                              const Host& host);

struct NotificationsFooter {
    std::string count;
    bool canClear = false;

    bool operator==(const NotificationsFooter&) const = default;
};

NotificationsFooter notificationsFooter(std::size_t count);

namespace notificationsTexts {
inline constexpr std::string_view emptyTitle = "No notifications yet";
inline constexpr std::string_view emptySymbol = "bell.slash";
inline constexpr std::string_view emptyDescription =
    "Notifications forwarded from your Android phone will appear here.";
inline constexpr std::string_view clearAll = "Clear All";
inline constexpr std::string_view reply = "Reply";
inline constexpr std::string_view replyPlaceholder = "Type reply...";
inline constexpr std::string_view send = "Send";
inline constexpr std::string_view cancel = "Cancel";
} // namespace notificationsTexts

} // namespace velloway
