#include "hosts/linux/desktop/LaunchEnvironment.h"

#include <cstdlib>
#include <string>

namespace velloway {

namespace {

std::string taken(const char* name) {
    const char* value = std::getenv(name);
    std::string text = value != nullptr ? value : "";
    ::unsetenv(name);
    return text;
}

} // namespace

LaunchEnvironment LaunchEnvironment::take() {
    const bool isAutostart = !taken("DESKTOP_AUTOSTART_ID").empty();
    const bool isByBus = !taken("DBUS_STARTER_ADDRESS").empty();
    taken("DBUS_STARTER_BUS_TYPE");
    return {.isUnattended = isAutostart || isByBus,
            .token = {.wayland = taken("XDG_ACTIVATION_TOKEN"), .x11 = taken("DESKTOP_STARTUP_ID")}};
}

} // namespace velloway
