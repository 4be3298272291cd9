#pragma once

#include "tabs/Texts.h"

namespace velloway {

inline constexpr auto clipboardTexts = std::to_array<TextEntry>({
    {"title", "Clipboard"},
    {"clearHistory", "Clear History"},
    {"description", "Manage and sync clipboard content between your devices."},
    {"send", "Send Current Mac Clipboard"},
    {"sendSymbol", "paperplane.fill"},
    {"emptySymbol", "doc.on.clipboard"},
    {"empty", "No received items yet"},
    {"rowSymbol", "text.justify.left"},
    {"copySymbol", "doc.on.doc"},
    {"copyTooltip", "Copy to Mac Clipboard"},
});

} // namespace velloway
