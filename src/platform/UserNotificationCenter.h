#pragma once

#include "platform/ImmutableText.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velloway {

struct NotificationContent {
    std::string title;
    /// Absent is not the same as empty: an absent subtitle is never set.
    std::optional<std::string> subtitle;
    ImmutableText body;
    bool hasDefaultSound = false;
    std::optional<std::string> threadIdentifier;
    std::optional<std::string> categoryIdentifier;

    bool operator==(const NotificationContent&) const = default;
};

/// Always delivered at once: there is no trigger.
struct NotificationRequest {
    std::string identifier;
    NotificationContent content;

    bool operator==(const NotificationRequest&) const = default;
};

struct TextInputNotificationAction {
    std::string identifier;
    std::string title;
    std::string textInputButtonTitle;
    std::string textInputPlaceholder;

    bool operator==(const TextInputNotificationAction&) const = default;
};

struct NotificationCategory {
    std::string identifier;
    std::vector<TextInputNotificationAction> actions;

    bool operator==(const NotificationCategory&) const = default;
};

/// `unknown` is whatever a system says that is none of the others.
enum class AuthorizationStatus { notDetermined, denied, authorized, provisional, ephemeral, unknown };

/// What the user is asked to allow, in any combination.
namespace authorizationOptions {
inline constexpr unsigned badge = 1;
inline constexpr unsigned sound = 2;
inline constexpr unsigned alert = 4;
} // namespace authorizationOptions

/// How a notification is presented, in any combination; not at all when nothing is chosen.
namespace presentationOptions {
inline constexpr unsigned badge = 1;
inline constexpr unsigned sound = 2;
inline constexpr unsigned banner = 4;
} // namespace presentationOptions

struct NotificationResponse {
    std::string actionIdentifier;
    /// The identifier of the request that was answered.
    std::string requestIdentifier;
    /// Present when the user answered through a text input.
    std::optional<std::string> userText;
};

/// Called on whatever thread the system picks. Each completion must be called exactly once.
class UserNotificationCenterDelegate {
public:
    virtual ~UserNotificationCenterDelegate() = default;
    virtual void didReceive(const NotificationResponse& response, std::function<void()> completion) = 0;
    virtual void willPresent(const NotificationRequest& request,
                             std::function<void(unsigned options)> completion) = 0;
};

/// The desktop's notification centre. All operations may be called from any thread; completions come on a
/// thread of the system's choosing.
class UserNotificationCenter {
public:
    virtual ~UserNotificationCenter() = default;

    /// Not owned; absent ends the delivery of responses.
    virtual void setDelegate(UserNotificationCenterDelegate* delegate) = 0;

    /// A request under an identifier already on screen replaces that notification in place. The completion
    /// may be absent; it gets an error text, or nothing on success.
    virtual void add(const NotificationRequest& request,
                     std::function<void(const std::optional<std::string>& error)> completion) = 0;
    virtual void removeDelivered(const std::vector<std::string>& identifiers) = 0;
    virtual void removePending(const std::vector<std::string>& identifiers) = 0;

    virtual void getAuthorizationStatus(std::function<void(AuthorizationStatus)> completion) = 0;
    virtual void requestAuthorization(
        unsigned options,
        std::function<void(bool granted, const std::optional<std::string>& error)> completion) = 0;
    virtual void setCategories(const std::vector<NotificationCategory>& categories) = 0;
};

} // namespace velloway
