#include "hosts/linux/input/InputSession.h"

#include "hosts/linux/input/PortalInput.h"
#include "hosts/linux/input/VirtualDevices.h"
#include "hosts/linux/input/X11Input.h"

#include <cstdlib>
#include <string_view>

namespace velloway {

namespace {

std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

/// For a session without any display, such as one over a remote shell.
class NoInput : public LinuxInput {
public:
    bool isTrusted() override { return false; }
    bool isTrustedWithPrompt() override { return false; }
    void pressKey(Key, Modifiers) override {}
    void typeText(std::string_view) override {}
    void pressMediaKey(MediaKey) override {}
    void movePointer(double, double) override {}
    void click(MouseButton) override {}
};

} // namespace

InputSession currentInputSession() {
    const std::string_view type = environment("XDG_SESSION_TYPE");
    if (type == "wayland") {
        return InputSession::wayland;
    }
    // A session started from a text console calls itself "tty", so the displays decide.
    if (type != "x11" && !environment("WAYLAND_DISPLAY").empty()) {
        return InputSession::wayland;
    }
    return environment("DISPLAY").empty() ? InputSession::none : InputSession::x11;
}

std::unique_ptr<LinuxInput> makeLinuxInput(const InputNeeds& needs) {
    switch (currentInputSession()) {
    case InputSession::x11:
        return std::make_unique<X11Input>(needs);
    case InputSession::wayland:
        if (auto devices = VirtualDevices::connect()) {
            return devices;
        }
        return std::make_unique<PortalInput>(needs);
    case InputSession::none:
        break;
    }
    return std::make_unique<NoInput>();
}

} // namespace velloway
