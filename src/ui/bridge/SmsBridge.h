#pragma once

#include "bridge/FieldText.h"
#include "bridge/RowModel.h"
#include "bridge/TabBridge.h"
#include "tabs/PhoneState.h"
#include "tabs/sms/SmsModel.h"

#include <QList>

#include <optional>
#include <string>

namespace velloway {

/// The list column apart from its rows.
struct ThreadListState {
    Q_GADGET
    QML_ANONYMOUS
    Q_PROPERTY(bool isEmpty MEMBER isEmpty)
    Q_PROPERTY(bool showsClearButton MEMBER showsClearButton)
    /// Empty: no such row.
    Q_PROPERTY(QString newMessageTo MEMBER newMessageTo)

public:
    bool isEmpty = false;
    bool showsClearButton = false;
    QString newMessageTo;

    bool operator==(const ThreadListState&) const = default;
};

/// The chat that is open, apart from its messages.
struct ChatState {
    Q_GADGET
    QML_ANONYMOUS
    Q_PROPERTY(bool isOpen MEMBER isOpen)
    Q_PROPERTY(QString name MEMBER name)
    /// Empty: no such line.
    Q_PROPERTY(QString address MEMBER address)
    Q_PROPERTY(QList<QString> carriers MEMBER carriers)
    /// One for each carrier.
    Q_PROPERTY(QList<double> simSlots MEMBER simSlots)

public:
    bool isOpen = false;
    QString name;
    QString address;
    QList<QString> carriers;
    QList<double> simSlots;

    bool operator==(const ChatState&) const = default;
};

class SmsBridge : public TabBridge {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window has it.")
    Q_PROPERTY(velloway::FieldText* contactQuery READ contactQuery CONSTANT)
    Q_PROPERTY(velloway::FieldText* chatText READ chatText CONSTANT)
    Q_PROPERTY(
        double selectedSimSlot READ selectedSimSlot WRITE setSelectedSimSlot NOTIFY selectedSimSlotChanged)
    Q_PROPERTY(velloway::ThreadListState list READ list NOTIFY listChanged)
    Q_PROPERTY(velloway::ChatState chat READ chat NOTIFY chatChanged)
    /// Another number whenever the bubbles are those of another chat.
    Q_PROPERTY(int shownChat READ shownChat NOTIFY shownChatChanged)
    Q_PROPERTY(bool canSend READ canSend NOTIFY canSendChanged)
    Q_PROPERTY(QAbstractItemModel* threads READ threads CONSTANT)
    Q_PROPERTY(QAbstractItemModel* bubbles READ bubbles CONSTANT)

public:
    SmsBridge(SmsModel& model, PhoneState& phone);

    FieldText* contactQuery() { return &contactQuery_; }
    FieldText* chatText() { return &chatText_; }
    double selectedSimSlot() const { return static_cast<double>(phone_.selectedSimSlot.get()); }
    void setSelectedSimSlot(double slot) { phone_.selectedSimSlot.set(static_cast<std::int64_t>(slot)); }
    ThreadListState list() const { return list_; }
    ChatState chat() const { return chat_; }
    int shownChat() const { return shownChat_; }
    bool canSend() const { return canSend_; }
    QAbstractItemModel* threads() { return &threads_; }
    QAbstractItemModel* bubbles() { return &bubbles_; }

    Q_INVOKABLE void refreshSmsHistory() { model_.refreshSmsHistory(); }
    Q_INVOKABLE void clearSearch() { model_.clearSearch(); }
    Q_INVOKABLE void startNewMessage() { model_.startNewMessage(); }
    /// `row` is a position in the threads; one outside of them is ignored.
    Q_INVOKABLE void openThread(int row);
    /// Copies the end of a message, of which only the head is shown, from a position in it on.
    Q_INVOKABLE void copyMessage(int row, int start);
    Q_INVOKABLE void openLink(const QString& address) { model_.openLink(fromQt(address)); }
    Q_INVOKABLE void sendChatMessage() { model_.sendChatMessage(); }

signals:
    void selectedSimSlotChanged();
    void shownChatChanged();
    void listChanged();
    void chatChanged();
    void canSendChanged();

private:
    /// A bubble with as much of its text as it shows. Its time is put into words only when it comes in sight: a
    /// chat can be thousands of them long.
    struct Bubble {
        double date = 0;
        std::string body;
        bool isCut = false;
        bool isOutgoing = false;

        bool operator==(const Bubble&) const = default;
    };

    void readList();
    void readChat();
    void readBubbles();

    SmsModel& model_;
    PhoneState& phone_;
    FieldText contactQuery_;
    FieldText chatText_;
    ThreadListState list_;
    ChatState chat_;
    std::optional<std::string> shownRecipient_;
    int shownChat_ = 0;
    bool canSend_ = false;
    RowModel<SmsThreadRow, std::string> threads_;
    RowModel<Bubble, double> bubbles_;
};

} // namespace velloway
