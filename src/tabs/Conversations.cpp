#include "tabs/Conversations.h"

#include "text/Case.h"
#include "text/Digits.h"
#include "text/Graphemes.h"
#include "text/Trim.h"
#include "text/Utf8.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace velloway {

namespace {

constexpr std::size_t keyDigits = 10;
constexpr double millisecondsPerSecond = 1000;
/// In bytes. What follows makes no difference to initials that anyone could see.
constexpr std::size_t longestName = 4096;

/// Brings records in the order of a log into the order of their dates; those of one date keep their order.
void sortByDate(std::vector<const SmsRecord*>& records) {
    const auto isEarlier = [](const SmsRecord* a, const SmsRecord* b) { return a->date < b->date; };
    const auto isNotLater = [](const SmsRecord* a, const SmsRecord* b) { return a->date <= b->date; };
    // Phones send the newest message first; what the user sends comes at the end.
    if (std::is_sorted(records.begin(), records.end(), isEarlier)) {
        return;
    }
    if (std::adjacent_find(records.begin(), records.end(), isNotLater) == records.end()) {
        std::reverse(records.begin(), records.end());
    } else {
        std::stable_sort(records.begin(), records.end(), isEarlier);
    }
}

/// Groups a log by address, one record at a time in the order of the log.
class ThreadBuilder {
public:
    void add(const SmsRecord& record) {
        Thread& thread = threadFor(record.address);
        thread.conversation.messages.push_back(&record);
        if (!thread.newest || record.date > thread.newest->date) {
            thread.newest = &record;
        }
        if (!thread.conversation.contactName && record.name) {
            thread.conversation.contactName = record.name;
        }
    }

    std::vector<Conversation> finish() && {
        while (!indices_.empty()) {
            auto entry = indices_.extract(indices_.begin());
            threads_[entry.mapped()].conversation.id = std::move(entry.key());
        }
        std::vector<Conversation> out;
        out.reserve(threads_.size());
        for (Thread& thread : threads_) {
            sortByDate(thread.conversation.messages);
            thread.conversation.displayAddress = thread.newest->address;
            out.push_back(std::move(thread.conversation));
        }
        std::stable_sort(out.begin(), out.end(), [](const Conversation& a, const Conversation& b) {
            return a.lastMessage()->date > b.lastMessage()->date;
        });
        return out;
    }

private:
    struct Thread {
        Conversation conversation;
        /// The first in the order of the log among those of the latest date.
        const SmsRecord* newest = nullptr;
    };

    Thread& threadFor(const std::string& address) {
        std::string key = normalizeAddress(address);
        const auto [entry, isNew] = indices_.try_emplace(std::move(key), threads_.size());
        if (isNew) {
            threads_.emplace_back();
        }
        return threads_[entry->second];
    }

    std::unordered_map<std::string, std::size_t> indices_;
    std::vector<Thread> threads_;
};

bool containsIgnoringAsciiCase(std::string_view text, std::string_view lowered) {
    if (lowered.empty()) {
        return true;
    }
    // Jumping from one occurrence of the first letter to the next is several times as fast as comparing
    // everywhere, which is noticed in texts of megabytes.
    const std::array<char, 2> first{lowered[0], upperAscii(lowered[0])};
    const std::string_view firstForms(first.data(), first[0] == first[1] ? 1 : 2);
    const auto isHere = [&](std::size_t at) {
        return std::equal(lowered.begin(), lowered.end(), text.begin() + static_cast<std::ptrdiff_t>(at),
                          [](char b, char a) { return lowerAscii(a) == b; });
    };
    for (const char form : firstForms) {
        for (std::size_t at = text.find(form);
             at != std::string_view::npos && at + lowered.size() <= text.size(); at = text.find(form, at + 1)) {
            if (isHere(at)) {
                return true;
            }
        }
    }
    return false;
}

/// Tests many texts for one piece of text, whatever their case.
class CaseBlindSearch {
public:
    explicit CaseBlindSearch(std::string lowered)
        : lowered_(std::move(lowered)), isAsciiQuery_(isAscii(lowered_)) {}

    /// Whether the lower-case form of `text` contains the query. The quick answers are those that the full
    /// case mapping would give.
    bool isIn(std::string_view text) const {
        if (isAsciiQuery_) {
            return turnsIntoAscii(text) ? isInMapped(text) : containsIgnoringAsciiCase(text, lowered_);
        }
        return !isAscii(text) && isInMapped(text);
    }

private:
    /// The Kelvin sign and the capital I with a dot are the only characters beyond ASCII whose lower-case
    /// forms hold ASCII letters.
    static bool turnsIntoAscii(std::string_view text) {
        return !isAscii(text) &&
               (text.find("\u212A") != std::string_view::npos || text.find("\u0130") != std::string_view::npos);
    }
    bool isInMapped(std::string_view text) const {
        return lowerCased(text).find(lowered_) != std::string::npos;
    }

    std::string lowered_;
    bool isAsciiQuery_;
};

/// The key of an address, unless it is longer than all of `keys`, which saves lowering the case of an address
/// of megabytes. Lower case makes at most one byte of three.
template <class Keys, class KeyOf>
std::optional<std::string> keyAmong(const Keys& keys, KeyOf keyOf, std::string_view address) {
    std::string digits = lastDigits(address, keyDigits);
    if (!digits.empty()) {
        return digits;
    }
    const auto mayBeEqual = [&](const auto& each) { return keyOf(each).size() >= address.size() / 3; };
    if (address.size() > longestName && std::none_of(keys.begin(), keys.end(), mayBeEqual)) {
        return std::nullopt;
    }
    return lowerCased(address);
}

std::string_view firstCharacter(std::string_view text) {
    const bool standsAlone = !text.empty() && text[0] != '\r' && isAscii(text.substr(0, 2));
    return standsAlone ? text.substr(0, 1) : firstGrapheme(text);
}

/// A blank that carries a combining mark is another character, and splits nothing.
std::vector<std::string_view> splitAtBlanks(std::string_view text) {
    std::vector<std::string_view> pieces;
    std::size_t start = 0;
    const auto endPiece = [&](std::size_t end) {
        if (end > start) {
            pieces.push_back(text.substr(start, end - start));
        }
    };
    std::size_t at = 0;
    const auto take = [&](std::string_view character) {
        if (character == " ") {
            endPiece(at);
            start = at + 1;
        }
        at += character.size();
    };
    if (isAscii(text)) {
        while (at < text.size()) {
            take(text.substr(at, 1));
        }
    } else {
        for (const std::string_view character : graphemes(text)) {
            take(character);
        }
    }
    endPiece(text.size());
    return pieces;
}

/// Whether no text could hold the query, which saves lowering the case of a query of megabytes. Lower case
/// makes at most three bytes of two, and one of three.
bool isTooLongFor(const std::vector<Conversation>& all, std::string_view query, const CallNames& names) {
    std::size_t longest = 0;
    if (query.size() < longestName) {
        return false;
    }
    for (const Conversation& conversation : all) {
        longest = std::max({longest, conversation.displayAddress.size(),
                            names.shownName(conversation.displayAddress, conversation.contactName).size()});
        for (const SmsRecord* message : conversation.messages) {
            longest = std::max(longest, message->body.size());
        }
    }
    return query.size() / 3 > longest * 2;
}

DateContext dateContext(const Host& host) {
    return {.locale = host.locale(), .timeZone = host.timeZone()};
}

} // namespace

std::string normalizeAddress(std::string_view address) {
    std::string digits = lastDigits(address, keyDigits);
    return digits.empty() ? lowerCased(address) : digits;
}

CallNames::CallNames(const std::vector<CallRecord>& callLog) {
    for (const CallRecord& call : callLog) {
        names_.try_emplace(normalizeAddress(call.number), call.name ? std::string_view(*call.name) : "");
    }
}

std::string_view CallNames::shownName(std::string_view address,
                                      std::optional<std::string_view> providedName) const {
    if (providedName && !providedName->empty()) {
        return *providedName;
    }
    if (!names_.empty()) {
        const auto key = keyAmong(
            names_, [](const auto& name) { return std::string_view(name.first); }, address);
        const auto found = key ? names_.find(*key) : names_.end();
        if (found != names_.end() && !found->second.empty()) {
            return found->second;
        }
    }
    return address;
}

std::vector<Conversation> conversations(const std::vector<SmsRecord>& smsLog) {
    ThreadBuilder threads;
    for (const SmsRecord& record : smsLog) {
        threads.add(record);
    }
    return std::move(threads).finish();
}

std::vector<const Conversation*> filteredConversations(const std::vector<Conversation>& all,
                                                       std::string_view contactQuery, const CallNames& names) {
    const std::string_view trimmed = trimBlanks(contactQuery);
    if (isTooLongFor(all, trimmed, names)) {
        return {};
    }
    const CaseBlindSearch query(lowerCased(trimmed));
    const auto isFound = [&](const Conversation& conversation) {
        return trimmed.empty() ||
               query.isIn(names.shownName(conversation.displayAddress, conversation.contactName)) ||
               query.isIn(conversation.displayAddress) ||
               std::any_of(conversation.messages.begin(), conversation.messages.end(),
                           [&](const SmsRecord* message) { return query.isIn(message->body); });
    };
    std::vector<const Conversation*> found;
    for (const Conversation& conversation : all) {
        if (isFound(conversation)) {
            found.push_back(&conversation);
        }
    }
    return found;
}

std::vector<const SmsRecord*> activeMessages(const std::vector<Conversation>& all,
                                             const std::optional<std::string>& activeRecipient) {
    if (!activeRecipient) {
        return {};
    }
    const auto key = keyAmong(
        all, [](const Conversation& each) { return std::string_view(each.id); }, *activeRecipient);
    const auto thread = std::find_if(all.begin(), all.end(),
                                     [&](const Conversation& conversation) { return conversation.id == key; });
    return thread == all.end() ? std::vector<const SmsRecord*>() : thread->messages;
}

std::string avatarInitials(std::string_view address, const CallNames& names) {
    const std::string_view name = head(names.shownName(address), longestName);
    const auto pieces = splitAtBlanks(name);
    if (pieces.size() >= 2) {
        return upperCased(std::string(firstCharacter(pieces[0])).append(firstCharacter(pieces[1])));
    }
    return name.empty() ? "?" : upperCased(firstCharacter(name));
}

std::string formatDate(double milliseconds, const Host& host) {
    return shortTime(milliseconds / millisecondsPerSecond, dateContext(host));
}

RelativeDates::RelativeDates(const Host& host)
    : context_(dateContext(host)), days_(secondsSince1970(host.now()), context_) {}

std::string RelativeDates::text(double milliseconds) const {
    const double seconds = milliseconds / millisecondsPerSecond;
    if (days_.isToday(seconds)) {
        return shortTime(seconds, context_);
    }
    return days_.isYesterday(seconds) ? "Yesterday" : shortDate(seconds, context_);
}

} // namespace velloway
