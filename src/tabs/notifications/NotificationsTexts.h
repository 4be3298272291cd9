#pragma once

#include "tabs/Texts.h"

namespace velloway {

inline constexpr auto notificationsTexts = std::to_array<TextEntry>({
    {"emptyTitle", "No notifications yet"},
    {"emptySymbol", "bell.slash"},
    {"emptyDescription", "Notifications forwarded from your Android phone will appear here."},
    {"clearAll", "Clear All"},
    {"reply", "Reply"},
    {"replyPlaceholder", "Type reply..."},
    {"send", "Send"},
    {"cancel", "Cancel"},
});

} // namespace velloway
