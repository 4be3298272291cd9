#pragma once

#include "platform/Host.h"
#include "state/Records.h"
#include "text/DateText.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// How the flat history of the phone becomes threads, and the text rules that the tabs share. Pure functions
/// over plain arrays.
namespace velloway {

/// What two spellings of one phone number have in common: their last ten digits. An address without digits is
/// its own key, in lower case.
std::string normalizeAddress(std::string_view address);

/// One thread.
///
/// All but `id` points into the log that the thread was made from and is valid as long as that log lives
/// unchanged: a history can be large, and a copy of every text at each reading is what would make it slow.
struct Conversation {
    std::string id;
    /// As the newest message spells it.
    std::string_view displayAddress;
    /// From the first record in the order of the log that has a name, even an empty one.
    std::optional<std::string_view> contactName;
    /// Oldest first.
    std::vector<const SmsRecord*> messages;

    const SmsRecord* lastMessage() const { return messages.empty() ? nullptr : messages.back(); }
};

/// The names that the call log knows, ready for many questions. They point into the log, which must live
/// unchanged as long as this.
class CallNames {
public:
    CallNames() = default;
    explicit CallNames(const std::vector<CallRecord>& callLog);

    /// The provided name unless it is empty; else the name of the first call with that number, if it has one;
    /// else the address.
    std::string contactName(std::string_view address,
                            std::optional<std::string_view> providedName = std::nullopt) const {
        return std::string(shownName(address, providedName));
    }
    /// The same without a copy; valid as long as the arguments and the log.
    std::string_view shownName(std::string_view address,
                               std::optional<std::string_view> providedName = std::nullopt) const;

private:
    /// By key. The first call with a number decides, also when it has no name; that is kept as an empty text.
    std::unordered_map<std::string, std::string_view> names_;
};

/// Newest thread first.
std::vector<Conversation> conversations(const std::vector<SmsRecord>& smsLog);

/// The threads in whose name, address or messages the query occurs, whatever its case. A query of blanks
/// keeps them all. The answer points into `all`.
std::vector<const Conversation*> filteredConversations(const std::vector<Conversation>& all,
                                                       std::string_view contactQuery, const CallNames& names);

/// The messages exchanged with one address, oldest first; valid as long as the log lives unchanged.
std::vector<const SmsRecord*> activeMessages(const std::vector<Conversation>& all,
                                             const std::optional<std::string>& activeRecipient);

/// One or two characters, or "?".
std::string avatarInitials(std::string_view address, const CallNames& names);

/// A time of day. Takes milliseconds since 1970.
std::string formatDate(double milliseconds, const Host& host);

/// How instants read beside a name: a time of day for today, "Yesterday", or a date. Holds for the moment and
/// the settings of the host in which it was made: one for all rows of a list, which may be many.
class RelativeDates {
public:
    explicit RelativeDates(const Host& host);

    /// Takes milliseconds since 1970.
    std::string text(double milliseconds) const;

    /// Whether the other one gives the same text for every instant.
    bool agreesWith(const RelativeDates& other) const { return days_.agreesWith(other.days_); }

private:
    DateContext context_;
    RecentDays days_;
};

} // namespace velloway
