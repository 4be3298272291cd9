#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <memory>

class QDBusServiceWatcher;

namespace velloway {

/// The desktop's notification service, as the bus sees it. Every call is asynchronous; everything here belongs
/// to the main thread. The connection is private, opened on first use, kept, and opened anew if the bus dies.
class NotificationService : public QObject {
    Q_OBJECT

public:
    enum class Outcome {
        shown,
        /// Nobody offers the service, or it does not answer.
        unavailable,
        /// The service that was asked went away before it answered.
        ownerGone,
        /// The service shows no more for the moment.
        tooMany,
        refused
    };

    struct Notification {
        uint replacesId = 0;
        QString summary;
        QString body;
        /// Key and title, in turns.
        QStringList actions;
        QVariantMap hints;
    };

    struct Answer {
        Outcome outcome = Outcome::unavailable;
        /// Never 0 when shown.
        uint id = 0;
        QString errorText;
    };

    struct Events {
        std::function<void(uint id, uint reason)> closed;
        std::function<void(uint id, const QString& key)> actionInvoked;
        std::function<void(uint id, const QString& text)> replied;
        /// Ids and capabilities learned before are worthless from here on.
        std::function<void()> ownerChanged;
    };

    using CapabilitiesAnswer = std::function<void(const QStringList* capabilities)>;

    /// Why a service closed a notification, as it numbers the reasons.
    static constexpr uint dismissedByUser = 2;

    explicit NotificationService(Events events);
    ~NotificationService() override;

    /// Starts the service if the bus knows how. The answer is null when there is none.
    void askCapabilities(const CapabilitiesAnswer& answered);
    /// Only after the capabilities have come.
    void notify(const Notification& notification, std::function<void(const Answer&)> answered);
    void close(uint id);

private slots:
    void onClosed(const QDBusMessage& message);
    void onActionInvoked(const QDBusMessage& message);
    void onReplied(const QDBusMessage& message);
    void onOwnerChanged(const QString& service, const QString& before, const QString& after);

private:
    bool open();
    void askCapabilities(const CapabilitiesAnswer& answered, int attemptsLeft);
    void call(const QDBusMessage& message, std::function<void(const QDBusMessage& reply)> answered);
    bool comesFromOwner(const QDBusMessage& message, qsizetype arguments) const;
    Answer answerFrom(const QDBusMessage& reply, int ownersAtCall) const;

    Events events_;
    QDBusConnection bus_;
    std::unique_ptr<QDBusServiceWatcher> watcher_;
    /// The unique bus name behind the service; empty while unknown.
    QString owner_;
    int owners_ = 0;
};

} // namespace velloway
