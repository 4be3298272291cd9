#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velloway {

/// The numbers are the platform's.
enum class ActivationPolicy : int { regular = 0, accessory = 1 };

struct Alert {
    enum class Style : int { warning = 0, informational = 1, critical = 2 };
    Style style = Style::warning;
    std::string messageText;
    std::string informativeText;
    std::vector<std::string> buttons;
};

/// What lies on the pasteboard of a service call.
struct ServicePasteboard {
    /// Whether it has any types at all.
    bool hasTypes = false;
    bool hasFileUrls = false;
    /// Absent when the objects can't be read.
    std::optional<std::vector<std::filesystem::path>> urls;
};

/// What the platform calls. Main thread only.
class ApplicationDelegate {
public:
    virtual ~ApplicationDelegate() = default;
    virtual void applicationDidFinishLaunching() = 0;
    virtual bool applicationShouldTerminateAfterLastWindowClosed() = 0;
    virtual bool applicationShouldHandleReopen(bool hasVisibleWindows) = 0;
    /// `tel:` and `sms:` addresses that the user chose in another program. They prepare a call or a message,
    /// which the user still has to make or send.
    virtual void applicationOpenLinks(const std::vector<std::string>& /*addresses*/) {}
    /// The application came to the front.
    virtual void applicationDidBecomeActive() = 0;
};

/// Files handed over by the file manager. Main thread only.
class ServicesProvider {
public:
    virtual ~ServicesProvider() = default;
    virtual void handleSendToAndroidService(const ServicePasteboard& pasteboard) = 0;
};

/// The process as the desktop sees it. Main thread only.
class Application {
public:
    virtual ~Application() = default;

    virtual void setServicesProvider(ServicesProvider* provider) = 0;
    virtual void setActivationPolicy(ActivationPolicy policy) = 0;
    virtual void activate(bool ignoringOtherApps) = 0;

    /// Blocks the caller in a nested event loop until the user has answered. The first button answers 1000,
    /// the second 1001, and so on.
    virtual int runModal(const Alert& alert) = 0;
    static constexpr int alertFirstButtonReturn = 1000;
};

} // namespace velloway
