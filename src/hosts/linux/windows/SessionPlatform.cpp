#include "hosts/linux/windows/SessionPlatform.h"

#include <cstdlib>
#include <string_view>

#include <xcb/xcb.h>

namespace velloway {

namespace {

constexpr const char* toolkitVariable = "QT_QPA_PLATFORM";

bool isSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value != nullptr && *value != '\0';
}

bool isWayland() {
    const char* type = std::getenv("XDG_SESSION_TYPE");
    return isSet("WAYLAND_DISPLAY") || (type != nullptr && std::string_view(type) == "wayland");
}

bool doesXServerAnswer() {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const bool answers = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return answers;
}

} // namespace

SessionPlatform::SessionPlatform() {
    if (!isSet(toolkitVariable) && isWayland() && isSet("DISPLAY") && doesXServerAnswer()) {
        ::setenv(toolkitVariable, "xcb;wayland", 1);
        isChosenHere_ = true;
    }
}

void SessionPlatform::withdraw() {
    if (isChosenHere_) {
        ::unsetenv(toolkitVariable);
        isChosenHere_ = false;
    }
}

} // namespace velloway
