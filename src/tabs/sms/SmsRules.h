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

/// One thread in the list; identified by `id`. Pressing it opens `displayAddress`. Texts are given as far as a
/// row could show them, these two as well.
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
    /// Empty: the text `noSim` in place of the picker.
    std::vector<SimChoice> sims;

    bool operator==(const ChatHeader&) const = default;
};

/// The type of a message that the user sent; every other came in.
inline constexpr std::int64_t sentType = 2;

bool isOutgoing(const SmsRecord& message);

/// One row for each thread, in their order, as it reads while no chat is open.
std::vector<SmsThreadRow> smsThreadRows(const std::vector<Conversation>& all, const CallNames& names,
                                        const RelativeDates& dates);

/// `rows` are those of `all`.
SmsList smsList(const std::vector<Conversation>& all, const std::vector<SmsThreadRow>& rows,
                std::string_view contactQuery, bool looksNumeric,
                const std::optional<std::string>& activeRecipient, const CallNames& names);

ChatHeader chatHeader(const std::vector<Conversation>& all, const std::string& activeRecipient,
                      const std::vector<SimInfo>& availableSIMs, const CallNames& names);

} // namespace velloway
