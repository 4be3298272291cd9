#include "bridge/SmsBridge.h"

#include "text/Links.h"

#include <QClipboard>
#include <QGuiApplication>

namespace velloway {

namespace {

/// As much as ten parts of a text message hold, in any script. A longer text without a blank would take more
/// than a frame to be wrapped and drawn.
constexpr std::size_t bubbleBytes = 2048;

/// A message with its addresses as links, in the toolkit's rich text; empty for a message without any.
QString withLinks(const QString& body) {
    const std::string head = fromQt(body);
    QString markup;
    const char* at = head.data();
    const auto addUpTo = [&](const char* end) {
        markup += toQt(std::string_view(at, static_cast<std::size_t>(end - at))).toHtmlEscaped();
        at = end;
    };
    for (const std::string_view link : webLinks(head)) {
        addUpTo(link.data());
        const QString address = toQt(link).toHtmlEscaped();
        markup += QStringLiteral("<a href=\"%1\">%1</a>").arg(address);
        at = link.data() + link.size();
    }
    if (markup.isEmpty()) {
        return {};
    }
    addUpTo(head.data() + head.size());
    return QStringLiteral("<span style=\"white-space: pre-wrap\">") + markup + QStringLiteral("</span>");
}

/// On one line.
QString previewOf(const SmsThreadRow& row) {
    return cut(row.preview, lineBytes).simplified();
}

} // namespace

SmsBridge::SmsBridge(SmsModel& model, PhoneState& phone)
    : TabBridge(QStringLiteral("SmsTab.qml")),
      model_(model),
      phone_(phone),
      contactQuery_(model.contactQuery, model.pasteboard()),
      chatText_(model.chatText, model.pasteboard()),
      threads_(this, &SmsThreadRow::id,
               {{"initials", cutTo(64, &SmsThreadRow::avatarInitials)},
                {"name", cutTo(lineBytes, &SmsThreadRow::name)},
                {"date", &SmsThreadRow::date},
                {"preview", &previewOf},
                {"isActive", &SmsThreadRow::isActive}}),
      bubbles_(this, &Bubble::date,
               {{"body", [](const Bubble& row) { return withEllipsis(row.body, row.isCut); }},
                {"markup", [](const Bubble& row) { return withLinks(withEllipsis(row.body, row.isCut)); }},
                {"isCut", &Bubble::isCut},
                {"time", [this](const Bubble& row) { return model_.formatDate(row.date); }},
                {"isOutgoing", &Bubble::isOutgoing}}) {
    follow(phone.selectedSimSlot, &SmsBridge::selectedSimSlotChanged);
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
          .newMessageTo = cut(list.newMessageTo, lineBytes)},
         &SmsBridge::listChanged);
    threads_.assign(std::move(list.rows));
}

void SmsBridge::readChat() {
    ChatState chat;
    if (const auto header = model_.chatHeader.get()) {
        chat = {
            .isOpen = true, .name = cut(header->name, lineBytes), .address = cut(header->address, lineBytes)};
        for (const SimChoice& sim : header->sims) {
            chat.carriers.push_back(cut(sim.carrier, lineBytes));
            chat.simSlots.push_back(static_cast<double>(sim.slot));
        }
    }
    show(chat_, std::move(chat), &SmsBridge::chatChanged);
}

void SmsBridge::openThread(int row) {
    if (row >= 0 && row < threads_.rowCount()) {
        // The list can change meanwhile.
        const SmsThreadRow pressed = threads_.rows()[static_cast<std::size_t>(row)];
        model_.openThread(pressed);
    }
}

void SmsBridge::copyMessage(int row, int start) {
    const std::vector<const SmsRecord*> messages = model_.activeMessages.get();
    if (row >= 0 && static_cast<std::size_t>(row) < messages.size()) {
        QGuiApplication::clipboard()->setText(toQt(messages[static_cast<std::size_t>(row)]->body).mid(start));
    }
}

void SmsBridge::readBubbles() {
    const std::vector<const SmsRecord*> messages = model_.activeMessages.get();
    std::vector<Bubble> rows;
    rows.reserve(messages.size());
    for (const SmsRecord* message : messages) {
        const std::string_view shown = head(shownPart(message->body), bubbleBytes);
        rows.push_back({.date = message->date,
                        .body = std::string(shown),
                        .isCut = shown.size() < message->body.size(),
                        .isOutgoing = isOutgoing(*message)});
    }
    const std::optional<std::string>& recipient = model_.activeRecipient.get();
    if (shownRecipient_ != recipient) {
        shownRecipient_ = recipient;
        bubbles_.assign({});
        bubbles_.assign(std::move(rows));
        ++shownChat_;
        emit shownChatChanged();
        return;
    }
    bubbles_.assign(std::move(rows));
}

} // namespace velloway
