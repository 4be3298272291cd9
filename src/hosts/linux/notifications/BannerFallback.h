#pragma once

#include "hosts/linux/notifications/NotificationPanels.h"
#include "platform/UserNotificationCenter.h"

#include <functional>
#include <optional>
#include <string>

namespace velloway {

/// Shows a notification on our own banner where the service cannot, and asks for the reply in our own panel
/// where the service has no field for it. Main thread.
class BannerFallback {
public:
    struct Events {
        std::function<void(const std::string& identifier, const std::string& action, const QString& text)>
            replied;
        std::function<void(const std::string& identifier)> clicked;
        std::function<void(const std::string& identifier)> dismissed;
        /// Comes last, however the banner ended, unless `close` or a replacement ended it.
        std::function<void(const std::string& identifier)> gone;
    };

    explicit BannerFallback(Events events) : events_(std::move(events)) {}

    /// False without a display.
    static bool canShow() { return NotificationPanels::canShow(); }

    /// False without a display.
    bool hasRoom() const { return canShow() && panels_.hasRoom(); }
    /// False for one that still waits for its turn.
    bool isOnScreen(const std::string& identifier) const { return panels_.isOnScreen(identifier); }
    /// The pointer is over it, or an answer is being typed.
    bool isInUse(const std::string& identifier) const { return panels_.isInUse(identifier); }
    bool isReplyOpen(const std::string& identifier) const { return panels_.isReplyOpen(identifier); }

    /// Replaces the banner of the same identifier. Returns false when there is no display or no room.
    bool show(const std::string& identifier, const NotificationContent& content,
              const std::optional<TextInputNotificationAction>& reply);
    void close(const std::string& identifier) { panels_.closeBanner(identifier); }
    /// Only the event `replied` can follow.
    void openReply(const std::string& identifier, const NotificationContent& content,
                   const TextInputNotificationAction& reply);

private:
    const Events events_;
    NotificationPanels panels_;
};

} // namespace velloway
