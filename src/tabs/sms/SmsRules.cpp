#include "tabs/sms/SmsRules.h"

#include "text/Digits.h"
#include "text/Graphemes.h"
#include "text/Trim.h"
#include "text/Utf8.h"

#include <algorithm>
#include <utility>

namespace velloway {

namespace {

constexpr std::size_t suggestionDigits = 3;
/// More than any row shows of a name or a text. A copy of all of a large text for each row and each reading
/// would hold the window up.
constexpr std::size_t rowBytes = 4096;

SmsThreadRow threadRow(const Conversation& conversation, const CallNames& names, const RelativeDates& dates) {
    SmsThreadRow row{
        .id = conversation.id,
        .displayAddress = conversation.displayAddress,
        .avatarInitials = avatarInitials(conversation.displayAddress, names),
        .name = std::string(
            head(names.contactName(conversation.displayAddress, conversation.contactName), rowBytes)),
    };
    if (const SmsRecord* last = conversation.lastMessage()) {
        row.date = dates.text(last->date);
        row.preview = head(last->body, rowBytes);
    }
    return row;
}

} // namespace

SearchTextTraits searchTextTraits(std::string_view contactQuery) {
    const std::string_view trimmed = trimBlanks(contactQuery);
    const std::string digits = digitsOnly(trimmed);
    const bool looksNumeric = !digits.empty() && (trimmed == digits || trimmed.starts_with('+'));
    return {.looksNumeric = looksNumeric,
            .showSuggestions = looksNumeric && graphemeCount(digits) >= suggestionDigits};
}

std::vector<SmsThreadRow> smsThreadRows(const std::vector<Conversation>& all, const CallNames& names,
                                        const RelativeDates& dates) {
    std::vector<SmsThreadRow> rows;
    rows.reserve(all.size());
    for (const Conversation& conversation : all) {
        rows.push_back(threadRow(conversation, names, dates));
    }
    return rows;
}

SmsList smsList(const std::vector<Conversation>& all, const std::vector<SmsThreadRow>& rows,
                std::string_view contactQuery, bool looksNumeric,
                const std::optional<std::string>& activeRecipient, const CallNames& names) {
    SmsList list{.showsEmptyState = all.empty() && contactQuery.empty(),
                 .showsClearButton = !contactQuery.empty()};
    if (!contactQuery.empty() && looksNumeric) {
        list.newMessageTo = std::string(contactQuery);
    }
    const std::vector<const Conversation*> found = filteredConversations(all, contactQuery, names);
    list.rows.reserve(found.size());
    for (const Conversation* conversation : found) {
        SmsThreadRow& row = list.rows.emplace_back(rows[static_cast<std::size_t>(conversation - all.data())]);
        row.isActive = activeRecipient == conversation->displayAddress;
    }
    return list;
}

ChatHeader chatHeader(const std::vector<Conversation>& all, const std::string& activeRecipient,
                      const std::vector<SimInfo>& availableSIMs, const CallNames& names) {
    const auto thread = std::find_if(all.begin(), all.end(), [&](const Conversation& conversation) {
        return conversation.displayAddress == activeRecipient;
    });
    ChatHeader header{
        .name = names.contactName(activeRecipient, thread == all.end() ? std::nullopt : thread->contactName)};
    if (header.name != activeRecipient) {
        header.address = activeRecipient;
    }
    for (const SimInfo& sim : availableSIMs) {
        header.sims.push_back({.carrier = sim.carrier, .slot = sim.slot});
    }
    return header;
}

bool isOutgoing(const SmsRecord& message) {
    return message.type == sentType;
}

} // namespace velloway
