#pragma once

#include "tabs/Computed.h"
#include "tabs/PhoneState.h"
#include "tabs/Style.h"
#include "tabs/sms/SmsRules.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace velloway {

/// The threads, and the chat with one of them. Main thread only.
class SmsModel {
public:
    SmsModel(const TabDependencies& dependencies, PhoneState& phone);

    /// The search text; the two fields below it follow from it.
    Observable<std::string> contactQuery;
    Observable<bool> looksNumeric{false};
    Observable<bool> showSuggestions{false};
    /// Whose chat is open.
    Observable<std::optional<std::string>> activeRecipient;
    Observable<std::string> chatText;
    // Nothing reads or writes these four.
    Observable<std::vector<std::string>> selectedRecipients;
    Observable<std::string> smsBody;
    Observable<std::string> smsStatus;
    Observable<ColorRole> smsStatusColor{ColorRole::secondary};

    const Computed<SmsList> list;
    /// Absent while no chat is open.
    const Computed<std::optional<ChatHeader>> chatHeader;
    /// Oldest first. The records belong to the log and are valid until that changes.
    const Computed<std::vector<const SmsRecord*>> activeMessages;
    const Computed<bool> canSend;

    Pasteboard& pasteboard() const { return with_.pasteboard; }
    /// The time below a bubble.
    std::string formatDate(double milliseconds) const { return velloway::formatDate(milliseconds, with_.host); }

    /// The tab came on screen.
    void appears();
    void refreshSmsHistory() { with_.server.requestSmsHistory(); }
    /// Opens a web address of a message; nothing else that a message may hold.
    void openLink(const std::string& address);
    void clearSearch() { contactQuery.set(""); }
    /// The row "New message to".
    void startNewMessage();
    /// The thread of a row was pressed.
    void openThread(const SmsThreadRow& row);
    void openConversation(const std::string& displayAddress) { activeRecipient.set(displayAddress); }
    void sendChatMessage();

private:
    const std::vector<SmsThreadRow>& threadRows() const;
    void readSearchText(const std::string& query);

    struct DatedRows {
        RelativeDates dates;
        std::vector<SmsThreadRow> rows;
    };

    const TabDependencies& with_;
    PhoneState& phone_;
    /// Worked out when first asked for, and absent again with every change of the logs.
    mutable std::optional<DatedRows> threadRows_;
    std::array<Subscription, 3> subscriptions_;
};

} // namespace velloway
