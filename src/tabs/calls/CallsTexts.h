#pragma once

#include "tabs/Texts.h"

namespace velloway {

inline constexpr auto callsTexts = std::to_array<TextEntry>({
    {"callSymbol", "phone.fill"},
    {"deleteSymbol", "delete.left.fill"},
    {"recentCalls", "Recent Calls"},
    {"noRecentCalls", "No recent calls"},
});

} // namespace velloway
