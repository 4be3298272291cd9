#pragma once

#include "platform/DispatchQueue.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

class QDBusServiceWatcher;

namespace velloway {

/// The desktop's notification service, as the bus sees it. Every call is asynchronous; everything here belongs
/// to the main thread. The connection is private, opened on first use, kept, and opened anew if the bus dies.
///
/// A service that is slow keeps what it was asked and gets to it in the end, so no call is ever taken back. A
/// call is overdue when the service has answered neither it nor any call before it for ten seconds or more.
class NotificationService : public QObject {
    Q_OBJECT

public:
    enum class Outcome {
        shown,
        /// Nobody offers the service, or we may not use it.
        unavailable,
        /// The service that was asked went away before it answered.
        ownerGone,
        /// The service shows no more for the moment, or the bus carries no more.
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
        /// A service has come, after `ownerChanged`, or one that was overdue has answered.
        std::function<void()> becameAvailable;
    };

    using CapabilitiesAnswer = std::function<void(const QStringList* capabilities)>;

    /// Why a service closed a notification, as it numbers the reasons.
    static constexpr uint dismissedByUser = 2;

    NotificationService(DispatchQueue& main, Events events);
    ~NotificationService() override;

    /// Starts the service if the bus knows how. The answer is null when there is none or it is overdue; until
    /// the service then stirs, null is the answer at once.
    void askCapabilities(const CapabilitiesAnswer& answered);
    /// Only after the capabilities have come. `answered` comes once, as late as the service likes; `overdue`
    /// may come once before it.
    void notify(const Notification& notification, std::function<void(const Answer&)> answered,
                std::function<void()> overdue);
    void close(uint id);

private slots:
    void onClosed(const QDBusMessage& message);
    void onActionInvoked(const QDBusMessage& message);
    void onReplied(const QDBusMessage& message);
    void onOwnerChanged(const QString& service, const QString& before, const QString& after);

private:
    struct Awaited {
        std::function<void()> overdue;
        /// An earlier call has been answered since this one was last looked at.
        bool hasProgress = false;
    };

    bool open();
    void askCapabilities(const CapabilitiesAnswer& answered, int attemptsLeft);
    void call(const QDBusMessage& message, std::function<void(const QDBusMessage& reply, bool isLate)> answered,
              std::function<void()> overdue);
    bool noteAnswer(std::uint64_t number);
    void lookLater(std::uint64_t number);
    void look(std::uint64_t number);
    bool comesFromOwner(const QDBusMessage& message, qsizetype arguments) const;
    Answer answerFrom(const QDBusMessage& reply, int ownersAtCall) const;

    DispatchQueue& main_;
    Events events_;
    QDBusConnection bus_;
    std::unique_ptr<QDBusServiceWatcher> watcher_;
    /// The unique bus name behind the service; empty while unknown.
    QString owner_;
    int owners_ = 0;
    /// Calls that are neither answered nor overdue, by number, which is the order in which they were made.
    std::map<std::uint64_t, Awaited> awaited_;
    std::uint64_t calls_ = 0;
    /// The present owner owes the answer to the question for its capabilities for too long already.
    bool isSilent_ = false;
};

} // namespace velloway
