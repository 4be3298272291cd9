#pragma once

#include "platform/StatusItem.h"

#include <array>
#include <string_view>
#include <vector>

namespace velloway {

/// What an entry of the status menu does.
enum class MenuCommand {
    none,
    separator,
    call,
    sms,
    fileDrop,
    history,
    remote,
    sendClipboard,
    clipboardHistory,
    settings,
    info,
    quit
};

struct MenuEntry {
    MenuCommand command;
    std::string_view title;
    std::string_view key;
    int tag;
    std::string_view operation;
};

/// The menu, top to bottom. Its order is not that of the tabs.
extern const std::array<MenuEntry, 15> statusMenuEntries;

inline constexpr int statusLineTag = 1;

} // namespace velloway
