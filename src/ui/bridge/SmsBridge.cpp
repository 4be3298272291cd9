#include "bridge/SmsBridge.h"

namespace velloway {

SmsBridge::SmsBridge(SmsModel& model, PhoneState& phone)
    : TabBridge(QStringLiteral("SmsTab.qml")),
      model_(model),
      phone_(phone),
      threads_(this, &SmsThreadRow::id,
               {{"address", &SmsThreadRow::displayAddress},
                {"initials", &SmsThreadRow::avatarInitials},
                {"name", &SmsThreadRow::name},
                {"date", &SmsThreadRow::date},
                {"preview", &SmsThreadRow::preview},
                {"isActive", &SmsThreadRow::isActive}}),
      bubbles_(this, &Bubble::date,
               {{"body", &Bubble::body},
                {"time", [this](const Bubble& row) { return model_.formatDate(row.date); }},
                {"isOutgoing", &Bubble::isOutgoing}}) {
    follow(model.contactQuery, &SmsBridge::contactQueryChanged);
    follow(model.chatText, &SmsBridge::chatTextChanged);
    follow(phone.selectedSimSlot, &SmsBridge::selectedSimSlotChanged);
    follow(model.activeRecipient, &SmsBridge::activeRecipientChanged);
    follow(model.list, [this] { readList(); });
    follow(model.chatHeader, [this] { readChat(); });
    follow(model.activeMessages, [this] { readBubbles(); });
    follow(model.canSend, [this] { show(canSend_, model_.canSend.get(), &SmsBridge::canSendChanged); });
}

void SmsBridge::readList() {
    SmsList list = model_.list.get();
    show(list_,
         {.isEmpty = list.showsEmptyState,
          .showsClearButton = list.showsClearButton,
          .newMessageTo = toQt(list.newMessageTo)},
         &SmsBridge::listChanged);
    threads_.assign(std::move(list.rows));
}

void SmsBridge::readChat() {
    ChatState chat;
    if (const auto header = model_.chatHeader.get()) {
        chat = {.isOpen = true, .name = toQt(header->name), .address = toQt(header->address)};
        for (const SimChoice& sim : header->sims) {
            chat.carriers.push_back(toQt(sim.carrier));
            chat.simSlots.push_back(static_cast<double>(sim.slot));
        }
    }
    show(chat_, std::move(chat), &SmsBridge::chatChanged);
}

void SmsBridge::readBubbles() {
    const std::vector<const SmsRecord*> messages = model_.activeMessages.get();
    std::vector<Bubble> rows;
    rows.reserve(messages.size());
    for (const SmsRecord* message : messages) {
        rows.push_back({.date = message->date, .body = message->body, .isOutgoing = isOutgoing(*message)});
    }
    bubbles_.assign(std::move(rows));
}

} // namespace velloway
