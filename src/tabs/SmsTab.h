#pragma once

#include "tabs/Conversations.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velloway {

/// What the search text of the SMS tab can be taken for.
struct SearchTextTraits {
    bool looksNumeric = false;
    bool showSuggestions = false;

    bool operator==(const SearchTextTraits&) const = default;
};

SearchTextTraits searchTextTraits(std::string_view contactQuery);

/// One thread in the list; identified by `id`. Pressing it opens `displayAddress`.
struct SmsThreadRow {
    std::string id;
    std::string displayAddress;
    std::string avatarInitials;
    std::string name;
    /// Both absent in a thread without messages.
    std::optional<std::string> date;
    std::optional<std::string> preview;
    bool isActive = false;

    bool operator==(const SmsThreadRow&) const = default;
};

/// The list column of the SMS tab.
struct SmsList {
    /// In place of the rows.
    bool showsEmptyState = false;
    bool showsClearButton = false;
    /// The row above the threads that starts a chat with what was typed; it shows this text.
    std::optional<std::string> newMessageTo;
    std::vector<SmsThreadRow> rows;
};

struct SimChoice {
    std::string carrier;
    std::int64_t slot = 0;

    bool operator==(const SimChoice&) const = default;
};

/// The right column while a chat is open.
struct ChatHeader {
    std::string name;
    /// The line below the name; absent when it would repeat it.
    std::optional<std::string> address;
    /// Empty: `smsTexts::noSim` in place of the picker.
    std::vector<SimChoice> sims;

    bool operator==(const ChatHeader&) const = default;
};

/// Whether the user sent it; everything else came in.
bool isOutgoing(const SmsRecord& message);

/// One bubble, identified by `id`; messages of the same millisecond share one.
struct SmsBubble {
    double id = 0;
    std::string body;
    std::string time;
    bool isOutgoing = false;

    bool operator==(const SmsBubble&) const = default;
};

struct Composer {
    bool canSend = false;

    bool operator==(const Composer&) const = default;
};

/// One row for each thread, in their order, as it reads while no chat is open.
std::vector<SmsThreadRow> smsThreadRows(const std::vector<Conversation>& all, const CallNames& names,
                                        const RelativeDates& dates);

/// `rows` are those of `all`.
SmsList smsList(const std::vector<Conversation>& all, const std::vector<SmsThreadRow>& rows,
                std::string_view contactQuery, bool looksNumeric,
                const std::optional<std::string>& activeRecipient, const CallNames& names);

ChatHeader chatHeader(const std::vector<Conversation>& all, const std::string& activeRecipient,
                      const std::vector<SimInfo>& availableSIMs, const CallNames& names);

std::vector<SmsBubble> smsBubbles(const std::vector<const SmsRecord*>& messages, const Host& host);

namespace smsTexts {
inline constexpr std::string_view title = "Messages";
inline constexpr std::string_view refreshSymbol = "arrow.clockwise";
inline constexpr std::string_view searchSymbol = "magnifyingglass";
inline constexpr std::string_view searchPlaceholder = "To: Search or type number…";
inline constexpr std::string_view clearSymbol = "xmark.circle.fill";
inline constexpr std::string_view emptySymbol = "message.fill";
inline constexpr std::string_view empty = "No Messages";
inline constexpr std::string_view newMessageSymbol = "paperplane.circle.fill";
inline constexpr std::string_view newMessageCaption = "New message to";
inline constexpr std::string_view noChatSymbol = "bubble.left.and.bubble.right.fill";
inline constexpr std::string_view noChat = "Select a conversation or search for a contact to begin.";
inline constexpr std::string_view noSim = "No SIM connected";
inline constexpr std::string_view simLabel = "SIM:";
inline constexpr std::string_view newConversation = "New Conversation";
inline constexpr std::string_view composerPlaceholder = "Text Message";
inline constexpr std::string_view sendSymbol = "arrow.up.circle.fill";
} // namespace smsTexts

} // namespace velloway
