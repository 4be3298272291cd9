#pragma once

#include "hosts/linux/notifications/ReplyRow.h"
#include "hosts/linux/windows/FloatingPanel.h"

namespace velloway {

/// Asks for the answer to one message, where the notification itself cannot. Takes the keyboard when shown.
class ReplyPanel : public FloatingPanel {
    Q_OBJECT

public:
    struct Prompt {
        /// Who gets the answer.
        QString title;
        /// What is being answered.
        QString text;
        ReplyField field;
    };

    explicit ReplyPanel(const Prompt& prompt);

    void takeKeyboard();

signals:
    /// At most one of the two comes, once; the panel does not close itself.
    void replied(const QString& text);
    void cancelled();

protected:
    void closeRequested() override { emit cancelled(); }

private:
    ReplyRow* row_;
};

} // namespace velloway
