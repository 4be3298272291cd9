#pragma once

#include "platform/Application.h"

#include <QObject>

namespace velloway {

/// The process on a desktop without a Dock: the activation policy is kept but shows nowhere, because a window
/// stands in the task bar exactly while it is open.
class LinuxApplication : public QObject, public Application {
public:
    LinuxApplication();

    void setServicesProvider(ServicesProvider* provider) override { servicesProvider_ = provider; }
    void setActivationPolicy(ActivationPolicy policy) override { activationPolicy_ = policy; }
    /// Asks the window manager to bring the visible windows forward; it may refuse.
    void activate() override;
    /// Escape, and the end of the process, answer like the second button.
    int runModal(const Alert& alert) override;

    /// Not owned; receives every activation from now on.
    void setDelegate(ApplicationDelegate* delegate);
    ServicesProvider* servicesProvider() const { return servicesProvider_; }
    ActivationPolicy activationPolicy() const { return activationPolicy_; }
    /// Shows every open window of the program, wherever it is: minimised, covered or on another workspace.
    static void bringForward();
    /// Whether a window of the program is open, menus and tool tips aside; a minimised one counts.
    static bool hasVisibleWindows();

private:
    ServicesProvider* servicesProvider_ = nullptr;
    ApplicationDelegate* delegate_ = nullptr;
    ActivationPolicy activationPolicy_ = ActivationPolicy::regular;
};

} // namespace velloway
