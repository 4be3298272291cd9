#include "hosts/linux/desktop/SingleInstance.h"

#include "hosts/linux/desktop/FileUris.h"
#include "text/Case.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QStandardPaths>
#include <QThread>
#include <QTimer>

#include <unistd.h>

namespace velloway {

namespace {

const QString serviceName = QStringLiteral("org.velloway.Velloway");
const QString objectPath = QStringLiteral("/org/velloway/Velloway");
const QString interfaceName = QStringLiteral("org.freedesktop.Application");

const QString waylandTokenKey = QStringLiteral("activation-token");
const QString x11TokenKey = QStringLiteral("desktop-startup-id");

/// A first instance that hangs must not make the second one hang as well. Milliseconds.
constexpr int answerBound = 5000;
constexpr int retryPause = 20;

QString runtimeFolder() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    return folder.isEmpty() ? QDir::tempPath() : folder;
}

/// The user's number keeps users apart where the folder is a common one.
QString inRuntimeFolder(const char* suffix) {
    return QStringLiteral("%1/velloway-%2.%3").arg(runtimeFolder()).arg(::getuid()).arg(QLatin1String(suffix));
}

std::unique_ptr<QLockFile> makeLock() {
    auto lock = std::make_unique<QLockFile>(inRuntimeFolder("lock"));
    // However old, the lock of a living process counts.
    lock->setStaleLockTime(0);
    return lock;
}

QStringList asStringList(const std::vector<std::string>& texts) {
    QStringList list;
    for (const std::string& text : texts) {
        list.append(QString::fromStdString(text));
    }
    return list;
}

QVariantMap asPlatformData(const ActivationToken& token) {
    QVariantMap data;
    if (!token.wayland.empty()) {
        data.insert(waylandTokenKey, QString::fromStdString(token.wayland));
    }
    if (!token.x11.empty()) {
        data.insert(x11TokenKey, QString::fromStdString(token.x11));
    }
    return data;
}

ActivationToken tokenIn(const QVariantMap& platformData) {
    return {.wayland = platformData.value(waylandTokenKey).toString().toStdString(),
            .x11 = platformData.value(x11TokenKey).toString().toStdString()};
}

bool isPhoneAddress(std::string_view argument) {
    for (const std::string_view scheme : {"tel:", "sms:", "smsto:"}) {
        if (lowerCased(argument.substr(0, scheme.size())) == scheme) {
            return true;
        }
    }
    return false;
}

QDBusMessage asMessage(const SingleInstance::Request& request) {
    QDBusMessage message = QDBusMessage::createMethodCall(serviceName, objectPath, interfaceName,
                                                          request.isReopen() ? QStringLiteral("Activate")
                                                                             : QStringLiteral("Open"));
    const QVariantMap platformData = asPlatformData(request.token);
    if (request.isReopen()) {
        message.setArguments({platformData});
    } else {
        message.setArguments({asStringList(request.uris), platformData});
    }
    return message;
}

/// One address a line, and an empty line as the end.
QByteArray asLines(const SingleInstance::Request& request) {
    QByteArray lines;
    for (const std::string& uri : request.uris) {
        lines.append(uri).append('\n');
    }
    return lines.append('\n');
}

} // namespace

SingleInstance::SingleInstance() = default;
SingleInstance::~SingleInstance() = default;

SingleInstance::Outcome SingleInstance::claim(const Request& request) {
    if (!QDBusConnection::sessionBus().isConnected()) {
        return claimBySocket(request);
    }
    const Outcome outcome = claimOnBus(request);
    if (outcome == Outcome::first) {
        listenToo();
    }
    return outcome;
}

SingleInstance::Outcome SingleInstance::claimOnBus(const Request& request) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    // The object first: whoever sees the name may call at once.
    bus.registerObject(objectPath, this, QDBusConnection::ExportScriptableSlots);
    const QDBusReply<QDBusConnectionInterface::RegisterServiceReply> reply =
        bus.interface()->registerService(serviceName, QDBusConnectionInterface::DontQueueService,
                                         QDBusConnectionInterface::DontAllowReplacement);
    if (reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered) {
        return Outcome::first;
    }
    bus.unregisterObject(objectPath);
    if (request.isUnattended && request.isReopen()) {
        return Outcome::handedOver;
    }
    const QDBusMessage answered = bus.call(asMessage(request), QDBus::Block, answerBound);
    return answered.type() == QDBusMessage::ReplyMessage ? Outcome::handedOver : Outcome::notAnswered;
}

SingleInstance::Outcome SingleInstance::claimBySocket(const Request& request) {
    const QString socketPath = inRuntimeFolder("socket");
    lock_ = makeLock();
    const QDeadlineTimer deadline(answerBound);
    while (true) {
        if (lock_->tryLock()) {
            listen(socketPath);
            return Outcome::first;
        }
        if (lock_->error() != QLockFile::LockFailedError) {
            // No place for a lock: better two instances than none.
            return Outcome::first;
        }
        if (request.isUnattended && request.isReopen()) {
            return Outcome::handedOver;
        }
        switch (HandoverSocket::handOver(socketPath, asLines(request), answerBound)) {
        case HandoverSocket::Outcome::answered:
            return Outcome::handedOver;
        case HandoverSocket::Outcome::notAnswered:
            return Outcome::notAnswered;
        case HandoverSocket::Outcome::nobodyListens:
            break;
        }
        // The other one may have just started and not listen yet, or be about to end.
        if (deadline.hasExpired()) {
            return Outcome::notAnswered;
        }
        QThread::msleep(retryPause);
    }
}

void SingleInstance::listenToo() {
    lock_ = makeLock();
    if (lock_->tryLock()) {
        listen(inRuntimeFolder("socket"));
    }
}

bool SingleInstance::listen(const QString& socketPath) {
    // The lock is ours, so that a socket of this name is a dead one.
    socket_ = std::make_unique<HandoverSocket>([this](const QByteArray& lines) { read(lines); });
    return socket_->listen(socketPath);
}

void SingleInstance::read(const QByteArray& lines) {
    Request request;
    for (const QByteArray& line : lines.split('\n')) {
        if (!line.isEmpty()) {
            request.uris.push_back(line.toStdString());
        }
    }
    take(std::move(request));
}

void SingleInstance::setHandler(std::function<void(const Request&)> handler) {
    handler_ = std::move(handler);
    QTimer::singleShot(0, this, &SingleInstance::deliver);
}

SingleInstance::Request SingleInstance::requestFrom(const std::vector<std::string>& arguments,
                                                    const std::filesystem::path& workingDirectory) {
    Request request;
    for (const std::string& argument : arguments) {
        if (argument.empty() || argument.front() == '-') {
            continue;
        }
        if (isPhoneAddress(argument)) {
            request.uris.push_back(argument);
        } else if (const auto named = pathOfFileUri(argument)) {
            request.uris.push_back(fileUri(*named));
        } else {
            request.uris.push_back(fileUri((workingDirectory / argument).lexically_normal()));
        }
    }
    return request;
}

void SingleInstance::Activate(const QVariantMap& platformData) {
    take({.token = tokenIn(platformData)});
}

void SingleInstance::Open(const QStringList& uris, const QVariantMap& platformData) {
    Request request{.token = tokenIn(platformData)};
    for (const QString& uri : uris) {
        request.uris.push_back(uri.toStdString());
    }
    take(std::move(request));
}

void SingleInstance::ActivateAction(const QString& action, const QVariantList& /*parameter*/,
                                    const QVariantMap& platformData) {
    take({.action = action.toStdString(), .token = tokenIn(platformData)});
}

void SingleInstance::take(Request request) {
    waiting_.push_back(std::move(request));
    // The caller gets its answer first: what follows may open a modal dialog.
    QTimer::singleShot(0, this, &SingleInstance::deliver);
}

void SingleInstance::deliver() {
    if (!handler_) {
        return;
    }
    for (const Request& request : std::exchange(waiting_, {})) {
        handler_(request);
    }
}

} // namespace velloway
