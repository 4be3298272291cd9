#pragma once

#include "tabs/Texts.h"

namespace velloway {

inline constexpr auto smsTexts = std::to_array<TextEntry>({
    {"title", "Messages"},
    {"refreshSymbol", "arrow.clockwise"},
    {"searchSymbol", "magnifyingglass"},
    {"searchPlaceholder", "To: Search or type number…"},
    {"clearSymbol", "xmark.circle.fill"},
    {"emptySymbol", "message.fill"},
    {"empty", "No Messages"},
    {"newMessageSymbol", "paperplane.circle.fill"},
    {"newMessageCaption", "New message to"},
    {"noChatSymbol", "bubble.left.and.bubble.right.fill"},
    {"noChat", "Select a conversation or search for a contact to begin."},
    {"noSim", "No SIM connected"},
    {"simLabel", "SIM:"},
    {"newConversation", "New Conversation"},
    {"composerPlaceholder", "Text Message"},
    {"sendSymbol", "arrow.up.circle.fill"},
});

} // namespace velloway
