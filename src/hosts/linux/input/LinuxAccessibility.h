#pragma once

#include "hosts/linux/input/InputBackend.h"
#include "platform/Accessibility.h"

namespace velloway {

/// On Linux the question is whether this session lets us inject input: an X server with its test extension
/// does, a Wayland desktop once the user has agreed.
class LinuxAccessibility : public Accessibility {
public:
    explicit LinuxAccessibility(InputBackend& backend) : backend_(backend) {}

    bool isTrusted() override { return backend_.isReady(); }
    bool isTrustedWithPrompt() override {
        if (!backend_.isReady()) {
            backend_.requestAccess();
        }
        return backend_.isReady();
    }

private:
    InputBackend& backend_;
};

} // namespace velloway
