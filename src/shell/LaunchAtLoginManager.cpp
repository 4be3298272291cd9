#include "shell/LaunchAtLoginManager.h"

namespace velloway {

bool LaunchAtLoginManager::isEnabled() const {
    return item_.status() == LoginItemStatus::enabled;
}

void LaunchAtLoginManager::setEnabled(bool enabled) {
    if (const auto error = enabled ? item_.registerItem() : item_.unregisterItem()) {
        log_.line({"LaunchAtLogin error: ", *error});
    }
}

} // namespace velloway
