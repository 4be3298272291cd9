#pragma once

#include "hosts/linux/notifications/NotificationService.h"
#include "hosts/linux/notifications/NotificationText.h"
#include "platform/UserNotificationCenter.h"

#include <optional>

namespace velloway {

/// The name of the action by which a service takes a reply itself.
inline constexpr auto inlineReplyKey = "inline-reply";

/// What a service with these capabilities is asked to show. `replacesId` is 0 for a new notification; `options`
/// are those that the delegate has decided on.
NotificationService::Notification notificationCall(const NotificationContent& content,
                                                   const std::optional<TextInputNotificationAction>& reply,
                                                   unsigned options, uint replacesId,
                                                   const NotificationCapabilities& capabilities);

} // namespace velloway
