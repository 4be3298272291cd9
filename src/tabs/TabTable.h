#pragma once

#include "tabs/TabIndex.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace velloway {

struct TabRow {
    /// The value of `selectedTab` that this row stands for.
    int index;
    std::string_view title;
    std::string_view symbol;

    bool operator==(const TabRow&) const = default;
};

/// The rows of the sidebar, top to bottom.
inline constexpr std::array<TabRow, 8> tabRows{{
    {tabIndex::call, "Call", "phone"},
    {tabIndex::sms, "SMS", "paperplane"},
    {tabIndex::fileDrop, "File Drop", "arrow.down.doc"},
    {tabIndex::notifications, "Notifications", "clock"},
    {tabIndex::remote, "Remote", "command"},
    {tabIndex::clipboard, "Clipboard", "doc.on.clipboard"},
    {tabIndex::settings, "Settings", "gearshape"},
    {tabIndex::info, "Info", "info.circle"},
}};

/// The row to highlight, or null for an index outside the table.
const TabRow* selectedRow(std::int64_t selectedTab);

/// The index of the tab whose content shows; an index outside the table shows the calls.
int shownTab(std::int64_t selectedTab);

/// How the rows of the sidebar look.
struct AdaptiveLabelStyle {
    /// Symbol and title; otherwise the symbol alone.
    bool showLabels = false;

    /// `width` is that of the whole view, in points.
    static constexpr AdaptiveLabelStyle forWidth(double width) { return {.showLabels = width > 250}; }
};

} // namespace velloway
