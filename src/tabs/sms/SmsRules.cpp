#include "tabs/sms/SmsRules.h"

#include "tabs/Style.h"
#include "text/CodePoints.h"
#include "text/Digits.h"
#include "text/Trim.h"
#include "text/Utf8.h"

#include <algorithm>
#include <utility>

namespace velloway {

namespace {

constexpr std::size_t suggestionDigits = 3;

SmsThreadRow threadRow(const Conversation& conversation, const CallNames& names, const RelativeDates& dates) {
    SmsThreadRow row{
        .id = std::string(head(conversation.id, rowBytes)),
        .displayAddress = std::string(head(conversation.displayAddress, rowBytes)),
        .avatarInitials = avatarInitials(conversation.displayAddress, names),
        .name =
            std::string(head(names.shownName(conversation.displayAddress, conversation.contactName), rowBytes)),
    };
    if (const SmsRecord* last = conversation.lastMessage()) {
        row.date = dates.text(last->date);
        row.preview = head(last->body, rowBytes);
    }
    return row;
}

} // namespace

SearchTextTraits searchTextTraits(std::string_view contactQuery) {
    std::string_view rest = trimBlanks(contactQuery);
    const bool hasPlus = rest.starts_with('+');
    const auto asciiDigits = std::find_if(rest.begin(), rest.end(), [](char c) { return c < '0' || c > '9'; });
    auto digits = static_cast<std::size_t>(asciiDigits - rest.begin());
    rest.remove_prefix(digits);
    // No further than needed: the text may be long.
    while (!rest.empty() && !(hasPlus && digits >= suggestionDigits)) {
        if (isDecimalDigit(takeCodePoint(rest))) {
            ++digits;
        } else if (!hasPlus) {
            return {};
        }
    }
    return {.looksNumeric = digits > 0, .showSuggestions = digits >= suggestionDigits};
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
        list.newMessageTo = std::string(head(contactQuery, rowBytes));
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
    const std::string_view name =
        names.shownName(activeRecipient, thread == all.end() ? std::nullopt : thread->contactName);
    ChatHeader header{.name = std::string(head(name, rowBytes))};
    if (name != activeRecipient) {
        header.address = head(activeRecipient, rowBytes);
    }
    for (const SimInfo& sim : availableSIMs) {
        header.sims.push_back({.carrier = std::string(head(sim.carrier, rowBytes)), .slot = sim.slot});
    }
    return header;
}

bool isOutgoing(const SmsRecord& message) {
    return message.type == sentType;
}

} // namespace velloway
