#pragma once

#include "hosts/linux/notifications/NotificationActions.h"
#include "platform/DispatchQueue.h"
#include "platform/UserNotificationCenter.h"

#include <memory>

namespace velloway {

class NotificationPoster;

/// The desktop's notification service, and our own banners where there is none.
///
/// Linux asks nobody for permission, so the authorization is always there. All completions and all calls of
/// the delegate come on `main`. Destroy it on the main thread; requests still waiting then are dropped.
class LinuxUserNotificationCenter : public UserNotificationCenter {
public:
    /// What the delegate gets as action identifier for a plain click and for a notification that the user
    /// closed.
    static constexpr const char* defaultAction = notificationActions::clicked;
    static constexpr const char* dismissAction = notificationActions::dismissed;

    /// `main` is the queue of the thread on which this is built, where Qt's event loop runs.
    explicit LinuxUserNotificationCenter(DispatchQueue& main);
    ~LinuxUserNotificationCenter() override;

    void setDelegate(UserNotificationCenterDelegate* delegate) override;
    void add(const NotificationRequest& request,
             std::function<void(const std::optional<std::string>& error)> completion) override;
    void removeDelivered(const std::vector<std::string>& identifiers) override;
    void removePending(const std::vector<std::string>& identifiers) override;
    void getAuthorizationStatus(std::function<void(AuthorizationStatus)> completion) override;
    void requestAuthorization(
        unsigned options,
        std::function<void(bool granted, const std::optional<std::string>& error)> completion) override;
    void setCategories(const std::vector<NotificationCategory>& categories) override;

private:
    DispatchQueue& main_;
    std::shared_ptr<NotificationPoster> poster_;
};

} // namespace velloway
