#pragma once

#include "hosts/linux/notifications/ReplyRow.h"
#include "hosts/linux/windows/FloatingPanel.h"

#include <QTimer>

#include <chrono>
#include <optional>

namespace velloway {

/// A notification that the program shows itself. Goes away after some seconds, but not under the pointer nor
/// while an answer is being typed. Never takes the keyboard on its own.
class NotificationBanner : public FloatingPanel {
    Q_OBJECT

public:
    struct Content {
        QString title;
        QString subtitle;
        QString body;
        std::optional<ReplyField> reply;
    };

    explicit NotificationBanner(const Content& content);

    /// How long it stays, from when it is shown, if nobody uses it.
    void setLifetime(std::chrono::milliseconds lifetime) { life_.setInterval(lifetime); }

    /// The pointer is over it, or an answer is being typed.
    bool isInUse() const;

signals:
    /// Exactly one of these comes, once; the banner does not close itself.
    void replied(const QString& text);
    void clicked();
    void dismissed();
    void expired();

protected:
    void closeRequested() override { emit dismissed(); }
    void backgroundClicked() override { emit clicked(); }
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* makeHeader(const QString& title);
    void addLine(const QString& text, int maxLines, QFont::Weight weight, QPalette::ColorRole color);
    void timeOut();

    ReplyRow* row_ = nullptr;
    QTimer life_{this};
};

} // namespace velloway
