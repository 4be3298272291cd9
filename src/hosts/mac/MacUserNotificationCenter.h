#pragma once

#include "hosts/mac/MacDelegate.h"
#include "platform/UserNotificationCenter.h"

namespace velloway {

/// The system's notification centre. It exists only for a program that runs from a signed bundle: anywhere else
/// the platform ends the process on first use.
class MacUserNotificationCenter final : public UserNotificationCenter {
public:
    explicit MacUserNotificationCenter(MacDelegate& delegate) : delegate_(delegate) {}

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
    MacDelegate& delegate_;
};

} // namespace velloway
