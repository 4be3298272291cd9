#include "FakePortal.h"

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QThread>

#include <utility>

namespace velloway::test {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString desktop = QStringLiteral("/org/freedesktop/portal/desktop");

QString pathIn(const QVariant& value) {
    return value.value<QDBusObjectPath>().path();
}
QVariantMap mapIn(const QVariant& value) {
    return qdbus_cast<QVariantMap>(value);
}

} // namespace

FakePortal::FakePortal() : bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, "fake-portal")) {
    workers_.setMaxThreadCount(4);
    bus_.registerVirtualObject(desktop, this, QDBusConnection::SubPath);
    bus_.registerService(service);
}

FakePortal::~FakePortal() {
    workers_.waitForDone();
    leaveTheBus();
}

void FakePortal::leaveTheBus() {
    bus_.unregisterService(service);
    bus_.unregisterObject(desktop, QDBusConnection::UnregisterTree);
    QDBusConnection::disconnectFromBus("fake-portal");
}

QString FakePortal::introspect(const QString&) const {
    return {};
}

bool FakePortal::handleMessage(const QDBusMessage& message, const QDBusConnection&) {
    const QString method = message.member();
    const QVariantList arguments = message.arguments();
    if (method.startsWith("Notify")) {
        handleInput(message);
        return true;
    }
    calls.append(method);
    if (method == "CreateSession") {
        if (refusesSessions) {
            return bus_.send(message.createErrorReply(QDBusError::UnknownInterface, "No such interface"));
        }
        const QVariantMap options = mapIn(arguments.at(0));
        client_ = message.service();
        session_ = desktop + "/session/" + QString::number(++sessionCount_) + '/' +
                   options.value("session_handle_token").toString();
        respond(acknowledge(message, options), 0, {{"session_handle", session_}});
    } else if (method == "SelectDevices" && pathIn(arguments.at(0)) == session_) {
        selectOptions = mapIn(arguments.at(1));
        respond(acknowledge(message, selectOptions), 0, {});
    } else if (method == "Start" && pathIn(arguments.at(0)) == session_) {
        question_ = acknowledge(message, mapIn(arguments.at(2)));
    } else if (method != "Close") {
        return bus_.send(message.createErrorReply(QDBusError::InvalidArgs, method));
    }
    return true;
}

/// Answers a call with the path of its request.
FakePortal::Request FakePortal::acknowledge(const QDBusMessage& message, const QVariantMap& options) {
    const QString sender = message.service().mid(1).replace('.', '_');
    const QString token =
        choosesItsOwnPaths ? "own" + QString::number(calls.size()) : options.value("handle_token").toString();
    const Request request{message.service(), desktop + "/request/" + sender + '/' + token};
    bus_.send(message.createReply(QVariant::fromValue(QDBusObjectPath(request.path))));
    return request;
}

void FakePortal::respond(const Request& request, unsigned code, const QVariantMap& results) {
    const auto send = [this, request, code, results] {
        QDBusMessage signal = QDBusMessage::createTargetedSignal(request.client, request.path,
                                                                 "org.freedesktop.portal.Request", "Response");
        signal.setArguments({code, results});
        bus_.send(signal);
    };
    if (choosesItsOwnPaths) {
        held_.push_back(send);
    } else {
        send();
    }
}

std::vector<std::function<void()>> FakePortal::takeHeld() {
    // The replies that were sent before have left the connection once this has been answered.
    bus_.interface()->isServiceRegistered(service);
    return std::exchange(held_, {});
}

void FakePortal::answer(unsigned code) {
    const Request request = *std::exchange(question_, std::nullopt);
    respond(request, code,
            code == 0
                ? QVariantMap{{"devices", devices}, {"restore_token", QString("token%1").arg(sessionCount_)}}
                : QVariantMap());
}

void FakePortal::closeSession(const QString& session) {
    QDBusMessage signal =
        QDBusMessage::createTargetedSignal(client_, session, "org.freedesktop.portal.Session", "Closed");
    signal.setArguments({QVariantMap()});
    bus_.send(signal);
}

void FakePortal::handleInput(const QDBusMessage& message) {
    const int time = inputCount_++ % 2 == 0 ? 10 : 0;
    workers_.start([this, message, time] {
        QThread::msleep(static_cast<unsigned long>(time));
        QMetaObject::invokeMethod(this, [this, message] {
            noteInput(message);
            bus_.send(message.createReply());
        });
    });
}

void FakePortal::noteInput(const QDBusMessage& message) {
    QString line = message.member().mid(QStringLiteral("Notify").size());
    if (pathIn(message.arguments().at(0)) != session_) {
        line += " on another session";
    }
    for (const QVariant& argument : message.arguments().mid(2)) {
        line += ' ' + argument.toString();
    }
    input.append(line);
}

} // namespace velloway::test
