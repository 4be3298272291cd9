#pragma once

#include "tabs/TabIndex.h"

#include <array>
#include <cstdint>
#include <string_view>

namespace velloway {

/// What the detail column of the main window shows.
enum class TabContent { calls, sendSms, fileDrop, notifications, remoteControl, clipboard, settings, info };

struct TabRow {
    /// The value of `selectedTab` that this row stands for.
    int index;
    std::string_view title;
    std::string_view symbol;
    TabContent content;
};

/// The rows of the sidebar, top to bottom.
inline constexpr std::array<TabRow, 8> tabRows{{
    {tabIndex::call, "Call", "phone", TabContent::calls},
    {tabIndex::sms, "SMS", "paperplane", TabContent::sendSms},
    {tabIndex::fileDrop, "File Drop", "arrow.down.doc", TabContent::fileDrop},
    {tabIndex::notifications, "Notifications", "clock", TabContent::notifications},
    {tabIndex::remote, "Remote", "command", TabContent::remoteControl},
    {tabIndex::clipboard, "Clipboard", "doc.on.clipboard", TabContent::clipboard},
    {tabIndex::settings, "Settings", "gearshape", TabContent::settings},
    {tabIndex::info, "Info", "info.circle", TabContent::info},
}};

inline constexpr double sidebarMinimumWidth = 200;

/// The row to highlight, or null for an index outside the table.
const TabRow* selectedRow(std::int64_t selectedTab);

/// An index outside the table shows the calls.
TabContent contentFor(std::int64_t selectedTab);

/// How the rows of the sidebar look.
struct AdaptiveLabelStyle {
    /// Symbol and title; otherwise the symbol alone.
    bool showLabels = false;

    /// `width` is that of the whole view, in points.
    static constexpr AdaptiveLabelStyle forWidth(double width) { return {.showLabels = width > 250}; }
};

} // namespace velloway
