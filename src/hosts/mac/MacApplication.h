#pragma once

#include "hosts/mac/MacDelegate.h"
#include "platform/Application.h"

#include <memory>

namespace velloway {

/// The process as AppKit knows it. Made before the toolkit's application object: that one keeps a delegate
/// that it finds, and passes every call on to it.
class MacApplication final : public Application {
public:
    /// `delegate` becomes the application's delegate.
    explicit MacApplication(MacDelegate& delegate);
    ~MacApplication() override;

    void setServicesProvider(ServicesProvider* provider) override;
    void setActivationPolicy(ActivationPolicy policy) override;
    void activate() override;
    int runModal(const Alert& alert) override;

    /// Ends the process, with no question to anybody.
    void terminate();

private:
    struct Native;
    MacDelegate& delegate_;
    std::unique_ptr<Native> native_;
};

} // namespace velloway
