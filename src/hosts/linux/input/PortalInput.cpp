#include "hosts/linux/input/PortalInput.h"

#include "hosts/linux/input/Keysyms.h"
#include "hosts/linux/input/LayoutCharacters.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QFile>
#include <QSettings>

#include <algorithm>
#include <utility>

namespace velloway {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString desktopPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString remoteDesktop = QStringLiteral("org.freedesktop.portal.RemoteDesktop");
const QString requestInterface = QStringLiteral("org.freedesktop.portal.Request");
const QString sessionInterface = QStringLiteral("org.freedesktop.portal.Session");

constexpr std::uint32_t keyboardDevice = 1;
constexpr std::uint32_t pointerDevice = 2;
constexpr std::uint32_t untilRevoked = 2;

// The kernel's numbers.
constexpr int leftButton = 0x110;
constexpr int rightButton = 0x111;

const QString tokenKey = QStringLiteral("inputPermission");

QString settingsFile(const InputNeeds& needs) {
    return QFile::decodeName(needs.settings.c_str());
}

} // namespace

PortalInput::PortalInput(InputNeeds needs) : needs_(std::move(needs)), bus_(QDBusConnection::sessionBus()) {
    if (!needs_.settings.empty()) {
        restoreToken_ = QSettings(settingsFile(needs_), QSettings::IniFormat).value(tokenKey).toString();
    }
    auto* watcher = new QDBusServiceWatcher(service, bus_, QDBusServiceWatcher::WatchForUnregistration, this);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, &PortalInput::sessionClosed);
}

PortalInput::~PortalInput() {
    closeSession();
}

bool PortalInput::isTrustedWithPrompt() {
    if (!isReady_) {
        QMetaObject::invokeMethod(this, [this] { begin(); });
    }
    return isReady_;
}

bool PortalInput::canAsk() {
    return !isReady_ && bus_.interface() && bus_.interface()->isServiceRegistered(service);
}

void PortalInput::begin() {
    if (step_ == Step::none) {
        createSession();
    }
}

void PortalInput::createSession() {
    step_ = Step::createSession;
    request("CreateSession", {}, {{"session_handle_token", QStringLiteral("velloway%1").arg(requestCount_)}});
}

void PortalInput::selectDevices() {
    step_ = Step::selectDevices;
    QVariantMap options{{"types", keyboardDevice | pointerDevice}, {"persist_mode", untilRevoked}};
    if (!restoreToken_.isEmpty()) {
        options.insert("restore_token", restoreToken_);
    }
    request("SelectDevices", {QVariant::fromValue(session_)}, options);
}

void PortalInput::start() {
    step_ = Step::start;
    const QString noParentWindow;
    request("Start", {QVariant::fromValue(session_), noParentWindow}, {});
}

/// The answer comes by a signal on an object whose path follows from our name and token; it is listened for
/// before the call goes out.
void PortalInput::request(const QString& method, QVariantList arguments, QVariantMap options) {
    const QString token = QStringLiteral("velloway%1").arg(++requestCount_);
    const QString sender = bus_.baseService().mid(1).replace('.', '_');
    watchRequest(desktopPath + "/request/" + sender + '/' + token);

    options.insert("handle_token", token);
    arguments.append(options);
    QDBusMessage message = QDBusMessage::createMethodCall(service, desktopPath, remoteDesktop, method);
    message.setArguments(arguments);
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(message), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, count = requestCount_](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                if (count == requestCount_ && !requestPath_.isEmpty()) {
                    callFinished(finished);
                }
            });
}

void PortalInput::callFinished(QDBusPendingCallWatcher* watcher) {
    const QDBusPendingReply<QDBusObjectPath> reply(*watcher);
    if (reply.isError()) {
        fail();
    } else if (reply.value().path() != requestPath_) {
        // Old portals choose the path themselves.
        watchRequest(reply.value().path());
    }
}

void PortalInput::watchRequest(const QString& path) {
    forgetRequest();
    requestPath_ = path;
    bus_.connect(service, path, requestInterface, "Response", this, SLOT(requestResponded(uint, QVariantMap)));
}

void PortalInput::forgetRequest() {
    if (!requestPath_.isEmpty()) {
        bus_.disconnect(service, requestPath_, requestInterface, "Response", this,
                        SLOT(requestResponded(uint, QVariantMap)));
        requestPath_.clear();
    }
}

void PortalInput::requestResponded(uint code, const QVariantMap& results) {
    if (requestPath_.isEmpty()) {
        return;
    }
    forgetRequest();
    if (code == 0) {
        advance(results);
    } else {
        fail();
    }
}

void PortalInput::advance(const QVariantMap& results) {
    switch (step_) {
    case Step::createSession:
        session_ = QDBusObjectPath(results.value("session_handle").toString());
        bus_.connect(service, session_.path(), sessionInterface, "Closed", this, SLOT(sessionClosed()));
        selectDevices();
        break;
    case Step::selectDevices:
        start();
        break;
    case Step::start:
        step_ = Step::started;
        devices_ = results.value("devices").toUInt();
        setToken(results.value("restore_token").toString());
        isReady_ = devices_ != 0;
        break;
    case Step::none:
    case Step::started:
        break;
    }
}

/// Each token is good for one session; the next one comes with it.
void PortalInput::setToken(const QString& token) {
    restoreToken_ = token;
    if (needs_.settings.empty()) {
        return;
    }
    QSettings settings(settingsFile(needs_), QSettings::IniFormat);
    if (token.isEmpty()) {
        settings.remove(tokenKey);
    } else {
        settings.setValue(tokenKey, token);
    }
}

void PortalInput::fail() {
    closeSession();
    sessionClosed();
}

void PortalInput::sessionClosed() {
    forgetRequest();
    if (!session_.path().isEmpty()) {
        bus_.disconnect(service, session_.path(), sessionInterface, "Closed", this, SLOT(sessionClosed()));
    }
    session_ = {};
    waiting_.clear();
    devices_ = 0;
    isReady_ = false;
    step_ = Step::none;
}

void PortalInput::closeSession() {
    if (!session_.path().isEmpty()) {
        bus_.send(QDBusMessage::createMethodCall(service, session_.path(), sessionInterface, "Close"));
    }
}

void PortalInput::pressKey(Key key, Modifiers modifiers) {
    sendTogether(keysymsOf(key, modifiers));
}

void PortalInput::pressMediaKey(MediaKey key) {
    sendTogether({keysymOf(key)});
}

void PortalInput::sendTogether(std::vector<std::uint32_t> keysyms) {
    if (!isReady_) {
        return;
    }
    QMetaObject::invokeMethod(this, [this, keysyms = std::move(keysyms)] {
        std::for_each(keysyms.begin(), keysyms.end(), [this](std::uint32_t each) { sendKeysym(each, true); });
        std::for_each(keysyms.rbegin(), keysyms.rend(),
                      [this](std::uint32_t each) { sendKeysym(each, false); });
    });
}

void PortalInput::typeText(std::string_view text) {
    if (!isReady_) {
        return;
    }
    QMetaObject::invokeMethod(this, [this, keysyms = keysymsOf(text)] {
        // Plasma's portal reports no error for a character that it does not type.
        if (const std::string missing = charactersWithoutKey(keysyms); !missing.empty()) {
            needs_.warn("The keyboard layout has no key for these characters, so that the desktop may leave "
                        "them out: " +
                        missing);
        }
        for (const std::uint32_t keysym : keysyms) {
            sendKeysym(keysym, true);
            sendKeysym(keysym, false);
        }
    });
}

void PortalInput::sendKeysym(std::uint32_t keysym, bool isDown) {
    if ((devices_ & keyboardDevice) != 0) {
        notify("NotifyKeyboardKeysym", {static_cast<int>(keysym), isDown ? 1U : 0U});
    }
}

void PortalInput::movePointer(double dx, double dy) {
    if ((devices_ & pointerDevice) != 0) {
        notify("NotifyPointerMotion", {dx, dy});
    }
}

void PortalInput::click(MouseButton button) {
    if ((devices_ & pointerDevice) != 0) {
        const int number = button == MouseButton::right ? rightButton : leftButton;
        notify("NotifyPointerButton", {number, 1U});
        notify("NotifyPointerButton", {number, 0U});
    }
}

void PortalInput::notify(const QString& method, const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall(service, desktopPath, remoteDesktop, method);
    const QVariantMap noOptions;
    message.setArguments(QVariantList{QVariant::fromValue(session_), noOptions} + arguments);
    waiting_.push_back(message);
    sendNext();
}

void PortalInput::sendNext() {
    if (isAwaitingAnswer_ || waiting_.empty()) {
        return;
    }
    isAwaitingAnswer_ = true;
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(waiting_.front()), this);
    waiting_.pop_front();
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* finished) {
        finished->deleteLater();
        if (finished->isError()) {
            needs_.warn("The desktop portal did not take a piece of input: " +
                        finished->error().message().toStdString());
        }
        isAwaitingAnswer_ = false;
        sendNext();
    });
}

} // namespace velloway
