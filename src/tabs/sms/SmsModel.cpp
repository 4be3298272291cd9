#include "tabs/sms/SmsModel.h"

#include "tabs/ContactsManager.h"
#include "text/Links.h"
#include "text/Utf8.h"

#include <memory>
#include <utility>

namespace velloway {

namespace {

/// Leaves the field alone, and its observers undisturbed, when it has this value already.
void setIfDifferent(Observable<bool>& field, bool value) {
    if (field.get() != value) {
        field.set(value);
    }
}

} // namespace

SmsModel::SmsModel(const TabDependencies& dependencies, PhoneState& phone)
    : list(
          [this] {
              return smsList(phone_.conversations(), threadRows(), contactQuery.get(), looksNumeric.get(),
                             activeRecipient.get(), phone_.callNames());
          },
          contactQuery, looksNumeric, phone.phoneSmsLog, phone.phoneCallLog, activeRecipient),
      chatHeader(
          [this]() -> std::optional<ChatHeader> {
              if (!activeRecipient.get()) {
                  return std::nullopt;
              }
              return velloway::chatHeader(phone_.conversations(), *activeRecipient.get(),
                                          with_.history->availableSIMs.get(), phone_.callNames());
          },
          activeRecipient, phone.phoneSmsLog, phone.phoneCallLog, dependencies.history->availableSIMs),
      activeMessages([this] { return velloway::activeMessages(phone_.conversations(), activeRecipient.get()); },
                     activeRecipient, phone.phoneSmsLog),
      canSend([this] { return !chatText.get().empty(); }, chatText),
      with_(dependencies),
      phone_(phone),
      subscriptions_{phone.phoneSmsLog.observe([this, alive = std::make_shared<bool>(true)](const auto&) {
                         threadRows_.reset();
                         // Ahead of the opening of the tab, which is not to take longer than a frame.
                         with_.main.async([this, weak = std::weak_ptr(alive)] {
                             if (!weak.expired()) {
                                 threadRows();
                             }
                         });
                     }),
                     phone.phoneCallLog.observe([this](const auto&) { threadRows_.reset(); }),
                     contactQuery.observe([this](const std::string& query) { readSearchText(query); })} {}

void SmsModel::readSearchText(const std::string& query) {
    const SearchTextTraits traits = searchTextTraits(query);
    setIfDifferent(looksNumeric, traits.looksNumeric);
    setIfDifferent(showSuggestions, traits.showSuggestions);
}

const std::vector<SmsThreadRow>& SmsModel::threadRows() const {
    // The same instant reads otherwise on another day, in another place.
    const RelativeDates dates(with_.host);
    if (!threadRows_ || !threadRows_->dates.agreesWith(dates)) {
        threadRows_ = {.dates = dates,
                       .rows = smsThreadRows(phone_.conversations(), phone_.callNames(), dates)};
    }
    return threadRows_->rows;
}

void SmsModel::appears() {
    with_.server.requestSmsHistory();
    with_.server.requestCallHistory();
}

void SmsModel::openLink(const std::string& address) {
    const auto links = webLinks(address);
    if (links.size() == 1 && links.front() == address) {
        with_.workspace.open(address);
    }
}

void SmsModel::startNewMessage() {
    activeRecipient.set(contactQuery.get());
    contactQuery.set("");
}

void SmsModel::openThread(const SmsThreadRow& row) {
    for (const Conversation& thread : phone_.conversations()) {
        if (head(thread.id, rowBytes) == row.id &&
            head(thread.displayAddress, rowBytes) == row.displayAddress) {
            openConversation(std::string(thread.displayAddress));
            return;
        }
    }
    // The log has changed since.
    openConversation(row.displayAddress);
}

void SmsModel::sendChatMessage() {
    if (!activeRecipient.get() || chatText.get().empty()) {
        return;
    }
    const std::string recipient = *activeRecipient.get();
    with_.server.sendSms(ContactsManager::digitsOnly(recipient), chatText.get(), phone_.selectedSimSlot.get());
    phone_.phoneSmsLog.modify([&](std::vector<SmsRecord>& log) {
        log.push_back({.address = recipient,
                       .name = std::nullopt,
                       .body = chatText.get(),
                       .date = secondsSince1970(with_.host.now()) * 1000,
                       .type = sentType});
    });
    chatText.set("");
}

} // namespace velloway
