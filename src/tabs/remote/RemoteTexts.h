#pragma once

#include "tabs/Texts.h"

namespace velloway {

inline constexpr auto remoteTexts = std::to_array<TextEntry>({
    {"control", "Control Android Device"},
    {"media", "Media"},
    {"volume", "Volume"},
    {"navigation", "Navigation"},
    {"dPad", "D-Pad"},
    {"core", "Core"},
    {"system", "System"},
    {"shortcuts", "Keyboard Shortcuts"},
    {"warningSymbol", "exclamationmark.shield.fill"},
    {"warningTitle", "Accessibility Access Required"},
    {"warning", "Velloway needs Accessibility permission to control media, presentation slides, and system "
                "features like locking or sleeping your Mac."},
    {"warningNote",
     "Note: If permission is already granted, try removing Velloway from the list and adding it again."},
    {"openSettings", "Open System Settings"},
    {"refreshStatus", "Refresh Status"},
});

} // namespace velloway
