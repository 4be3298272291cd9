#pragma once

#include <functional>
#include <map>
#include <string>

namespace velloway {

class ApplicationDelegate;
class ServicesProvider;
class UserNotificationCenterDelegate;

/// The one object that the platform calls by selector, and where each call goes from it; what is absent is not
/// called. It has no terminate hook: nothing is to hold up the end of the process.
class MacDelegate {
public:
    MacDelegate();
    ~MacDelegate();
    MacDelegate(const MacDelegate&) = delete;
    MacDelegate& operator=(const MacDelegate&) = delete;

    /// The Objective-C object, which goes with this one. The platform holds it weakly.
    void* object() const;

    // Main thread only.
    ApplicationDelegate* application = nullptr;
    ServicesProvider* services = nullptr;
    /// By selector.
    std::map<std::string, std::function<void()>, std::less<>> menuActions;
    std::function<void()> windowWillClose;

    /// Must be set before the system can deliver anything, and stay.
    UserNotificationCenterDelegate* notifications = nullptr;

private:
    struct Native;
    Native* native_;
};

} // namespace velloway
