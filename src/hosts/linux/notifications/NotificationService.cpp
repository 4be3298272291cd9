#include "hosts/linux/notifications/NotificationService.h"

#include <QDBusError>
#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QPointer>

#include <chrono>
#include <limits>
#include <utility>

namespace velloway {

namespace {

const QString serviceName = QStringLiteral("org.freedesktop.Notifications");
const QString servicePath = QStringLiteral("/org/freedesktop/Notifications");
const QString appName = QStringLiteral("Velloway");
const QString appIcon = QStringLiteral("org.velloway.Velloway");
/// How long we wait for any sign of life; long enough for a service that the bus has to start first.
constexpr std::chrono::seconds answerTimeout{10};
/// The bus itself answers for a service that goes away. Whatever it forgot, we could not take back.
constexpr int noTimeout = std::numeric_limits<int>::max();
/// A service that goes away while it is asked is asked again when the next one has come, but not for ever.
constexpr int capabilityAttempts = 3;
constexpr int serverChoosesExpiry = -1;

QString newConnectionName() {
    static int count = 0;
    return QStringLiteral("velloway-notifications-%1").arg(++count);
}

QDBusMessage methodCall(const QString& method) {
    return QDBusMessage::createMethodCall(serviceName, servicePath, serviceName, method);
}

NotificationService::Outcome outcomeOf(const QDBusMessage& error) {
    using Outcome = NotificationService::Outcome;
    const QString name = error.errorName();
    if (name.endsWith(u"ExcessNotificationGeneration") || name.endsWith(u"MaxNotificationsExceeded")) {
        return Outcome::tooMany;
    }
    if (name.startsWith(u"org.freedesktop.DBus.Error.Spawn.")) {
        return Outcome::unavailable;
    }
    switch (QDBusError(error).type()) {
    case QDBusError::LimitsExceeded:
    case QDBusError::NoMemory:
        return Outcome::tooMany;
    case QDBusError::AccessDenied:
    case QDBusError::ServiceUnknown:
    case QDBusError::NoReply:
    case QDBusError::Timeout:
    case QDBusError::TimedOut:
    case QDBusError::Disconnected:
    case QDBusError::NoServer:
    case QDBusError::UnknownMethod:
    case QDBusError::UnknownInterface:
    case QDBusError::UnknownObject:
        return Outcome::unavailable;
    default:
        return name == u"org.freedesktop.DBus.Error.NameHasNoOwner" ? Outcome::unavailable : Outcome::refused;
    }
}

} // namespace

NotificationService::NotificationService(DispatchQueue& main, Events events)
    : main_(main), events_(std::move(events)), bus_(QString()) {}

NotificationService::~NotificationService() {
    QDBusConnection::disconnectFromBus(bus_.name());
}

bool NotificationService::open() {
    if (bus_.isConnected()) {
        return true;
    }
    if (watcher_) {
        watcher_.reset();
        QDBusConnection::disconnectFromBus(bus_.name());
        onOwnerChanged(serviceName, owner_, {});
    }
    bus_ = QDBusConnection::connectToBus(QDBusConnection::SessionBus, newConnectionName());
    if (!bus_.isConnected()) {
        return false;
    }
    watcher_ =
        std::make_unique<QDBusServiceWatcher>(serviceName, bus_, QDBusServiceWatcher::WatchForOwnerChange);
    connect(watcher_.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
            &NotificationService::onOwnerChanged);
    // No sender is named: Qt would look up its owner with a blocking call. The slots check the sender.
    bus_.connect({}, servicePath, serviceName, QStringLiteral("NotificationClosed"), this,
                 SLOT(onClosed(QDBusMessage)));
    bus_.connect({}, servicePath, serviceName, QStringLiteral("ActionInvoked"), this,
                 SLOT(onActionInvoked(QDBusMessage)));
    bus_.connect({}, servicePath, serviceName, QStringLiteral("NotificationReplied"), this,
                 SLOT(onReplied(QDBusMessage)));
    return true;
}

void NotificationService::call(const QDBusMessage& message,
                               std::function<void(const QDBusMessage& reply, bool isLate)> answered,
                               std::function<void()> overdue) {
    const std::uint64_t number = ++calls_;
    awaited_[number].overdue = std::move(overdue);
    auto* pending = new QDBusPendingCallWatcher(bus_.asyncCall(message, noTimeout), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this,
            [this, pending, number, answered = std::move(answered)] {
                pending->deleteLater();
                const bool isLate = noteAnswer(number);
                answered(pending->reply(), isLate);
            });
    lookLater(number);
}

bool NotificationService::noteAnswer(std::uint64_t number) {
    const bool isLate = awaited_.erase(number) == 0;
    for (auto later = awaited_.upper_bound(number); later != awaited_.end(); ++later) {
        later->second.hasProgress = true;
    }
    return isLate;
}

void NotificationService::lookLater(std::uint64_t number) {
    main_.asyncAfter(answerTimeout, [self = QPointer(this), number] {
        if (self) {
            self->look(number);
        }
    });
}

void NotificationService::look(std::uint64_t number) {
    const auto found = awaited_.find(number);
    if (found == awaited_.end()) {
        return;
    }
    if (std::exchange(found->second.hasProgress, false)) {
        return lookLater(number);
    }
    const auto overdue = std::move(found->second.overdue);
    awaited_.erase(found);
    overdue();
}

void NotificationService::askCapabilities(const CapabilitiesAnswer& answered) {
    askCapabilities(answered, capabilityAttempts);
}

void NotificationService::askCapabilities(const CapabilitiesAnswer& answered, int attemptsLeft) {
    if (attemptsLeft == 0 || !open() || isSilent_) {
        return answered(nullptr);
    }
    call(
        methodCall(QStringLiteral("GetCapabilities")),
        [=, this, ownersAtCall = owners_](const QDBusMessage& reply, bool isLate) {
            if (isLate) {
                if (std::exchange(isSilent_, isSilent_ && owners_ != ownersAtCall) && !isSilent_) {
                    events_.becameAvailable();
                }
                return;
            }
            if (owners_ != ownersAtCall && reply.service() != owner_) {
                return askCapabilities(answered, attemptsLeft - 1);
            }
            if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
                return answered(nullptr);
            }
            owner_ = reply.service();
            const QStringList names = reply.arguments().constFirst().toStringList();
            answered(&names);
        },
        [=, this] {
            isSilent_ = true;
            answered(nullptr);
        });
}

void NotificationService::notify(const Notification& notification, std::function<void(const Answer&)> answered,
                                 std::function<void()> overdue) {
    if (!bus_.isConnected()) {
        onOwnerChanged(serviceName, owner_, {});
        return answered({Outcome::ownerGone, 0, {}});
    }
    QDBusMessage message = methodCall(QStringLiteral("Notify"));
    message << appName << notification.replacesId << appIcon << notification.summary << notification.body
            << notification.actions << notification.hints << serverChoosesExpiry;
    call(
        message,
        [this, ownersAtCall = owners_, answered = std::move(answered)](const QDBusMessage& reply, bool) {
            answered(answerFrom(reply, ownersAtCall));
        },
        std::move(overdue));
}

NotificationService::Answer NotificationService::answerFrom(const QDBusMessage& reply, int ownersAtCall) const {
    if (owners_ != ownersAtCall && reply.service() != owner_) {
        return {Outcome::ownerGone, 0, reply.errorMessage()};
    }
    if (reply.type() == QDBusMessage::ErrorMessage) {
        return {outcomeOf(reply), 0, reply.errorMessage()};
    }
    const uint id = reply.arguments().isEmpty() ? 0 : reply.arguments().constFirst().toUInt();
    if (id == 0) {
        return {Outcome::refused, 0, QStringLiteral("The notification service gave no identifier.")};
    }
    return {Outcome::shown, id, {}};
}

void NotificationService::close(uint id) {
    QDBusMessage message = methodCall(QStringLiteral("CloseNotification"));
    message << id;
    message.setAutoStartService(false);
    bus_.send(message);
}

bool NotificationService::comesFromOwner(const QDBusMessage& message, qsizetype arguments) const {
    return message.service() == owner_ && message.arguments().size() >= arguments;
}

void NotificationService::onClosed(const QDBusMessage& message) {
    if (comesFromOwner(message, 2)) {
        events_.closed(message.arguments().at(0).toUInt(), message.arguments().at(1).toUInt());
    }
}

void NotificationService::onActionInvoked(const QDBusMessage& message) {
    if (comesFromOwner(message, 2)) {
        events_.actionInvoked(message.arguments().at(0).toUInt(), message.arguments().at(1).toString());
    }
}

void NotificationService::onReplied(const QDBusMessage& message) {
    if (comesFromOwner(message, 2)) {
        events_.replied(message.arguments().at(0).toUInt(), message.arguments().at(1).toString());
    }
}

void NotificationService::onOwnerChanged(const QString&, const QString&, const QString& after) {
    owner_ = after;
    ++owners_;
    isSilent_ = false;
    events_.ownerChanged();
    if (!owner_.isEmpty()) {
        events_.becameAvailable();
    }
}

} // namespace velloway
