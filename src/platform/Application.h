#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace velloway {

/// Whether the application has its place among the open ones (the Dock, where there is one) or is a mere
/// helper.
enum class ActivationPolicy { regular, accessory };

struct Alert {
    enum class Style { warning, informational, critical };
    Style style = Style::warning;
    std::string messageText;
    std::string informativeText;
    std::vector<std::string> buttons;
};

/// What the file manager hands over.
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
    /// Brings the application to the front, whatever else is there.
    virtual void activate() = 0;

    /// Blocks the caller in a nested event loop until the user has answered, and returns the place of the
    /// button in the alert, from 0.
    virtual int runModal(const Alert& alert) = 0;
};

} // namespace velloway
