#pragma once

#include "state/Records.h"

#include <string>
#include <string_view>
#include <vector>

namespace velloway {

/// One received text, identified by `id`.
struct ClipboardRow {
    Uuid id;
    std::string text;
    std::string date;

    bool operator==(const ClipboardRow&) const = default;
};

std::vector<ClipboardRow> clipboardRows(const std::vector<ClipboardRecord>& records, const Host& host);

inline constexpr int clipboardRowMaximumLines = 10;

namespace clipboardTexts {
inline constexpr std::string_view title = "Clipboard";
inline constexpr std::string_view clearHistory = "Clear History";
inline constexpr std::string_view description = "Manage and sync clipboard content between your devices.";
inline constexpr std::string_view send = "Send Current Mac Clipboard";
inline constexpr std::string_view sendSymbol = "paperplane.fill";
inline constexpr std::string_view emptySymbol = "doc.on.clipboard";
inline constexpr std::string_view empty = "No received items yet";
inline constexpr std::string_view rowSymbol = "text.justify.left";
inline constexpr std::string_view copySymbol = "doc.on.doc";
inline constexpr std::string_view copyTooltip = "Copy to Mac Clipboard";
} // namespace clipboardTexts

} // namespace velloway
