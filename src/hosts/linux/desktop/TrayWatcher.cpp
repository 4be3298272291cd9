#include "hosts/linux/desktop/TrayWatcher.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace velloway {

namespace {

const QString watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

} // namespace

TrayWatcher::TrayWatcher()
    : bus_(QDBusConnection::sessionBus()),
      service_(watcherService, bus_, QDBusServiceWatcher::WatchForOwnerChange) {
    if (!bus_.isConnected()) {
        return;
    }
    connect(&service_, &QDBusServiceWatcher::serviceOwnerChanged, this, &TrayWatcher::ownerChanged);
    for (const char* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
        bus_.connect(watcherService, watcherPath, watcherService, QLatin1String(signal), this, SLOT(ask()));
    }
    ask();
}

void TrayWatcher::ask() {
    QDBusMessage message = QDBusMessage::createMethodCall(
        watcherService, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    message.setArguments({watcherService, QStringLiteral("IsStatusNotifierHostRegistered")});
    message.setAutoStartService(false);
    auto* call = new QDBusPendingCallWatcher(bus_.asyncCall(message), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* finished) {
        finished->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *finished;
        setThere(reply.isValid() && reply.value().variant().toBool());
    });
}

void TrayWatcher::ownerChanged(const QString& /*service*/, const QString& oldOwner, const QString& newOwner) {
    if (!oldOwner.isEmpty()) {
        setThere(false);
    }
    if (!newOwner.isEmpty()) {
        ask();
    }
}

void TrayWatcher::setThere(bool isThere) {
    if (isThere == isThere_) {
        return;
    }
    isThere_ = isThere;
    if (isThere) {
        emit trayAppeared();
    } else {
        emit trayGone();
    }
}

} // namespace velloway
