#include "contract/FakeNotificationService.h"

#include <stdexcept>

namespace velloway::test {

namespace {

const QString serviceName = QStringLiteral("org.freedesktop.Notifications");
const QString servicePath = QStringLiteral("/org/freedesktop/Notifications");
constexpr uint closedByCall = 3;

int serial() {
    static int count = 0;
    return ++count;
}

} // namespace

FakeNotificationService::FakeNotificationService(QStringList offered)
    : capabilities(std::move(offered)),
      bus_(QDBusConnection::connectToBus(QDBusConnection::SessionBus, QStringLiteral("fake-%1").arg(serial()))),
      nextId_(uint(serial()) * 1000) {
    const bool isUp =
        bus_.registerObject(servicePath, this,
                            QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllSignals) &&
        bus_.registerService(serviceName);
    if (!isUp) {
        throw std::runtime_error("the fake notification service could not take its name");
    }
}

FakeNotificationService::~FakeNotificationService() {
    bus_.unregisterObject(servicePath);
    QDBusConnection::disconnectFromBus(bus_.name());
}

QStringList FakeNotificationService::GetCapabilities() {
    ++capabilityQuestions;
    if (holdsCapabilities) {
        setDelayedReply(true);
        held.push_back(message().createReply(capabilities));
    }
    return capabilities;
}

uint FakeNotificationService::Notify(const QString& appName, uint replacesId, const QString& icon,
                                     const QString& summary, const QString& body, const QStringList& actions,
                                     const QVariantMap& hints, int timeout) {
    if (errorsLeft > 0) {
        --errorsLeft;
        setDelayedReply(true);
        held.push_back(message().createErrorReply(errorName, QStringLiteral("as the test wants it")));
        if (!holdsAnswers) {
            answerHeld();
        }
        return 0;
    }
    const uint id = onScreen.contains(replacesId) ? replacesId : nextId_++;
    calls.push_back({id, replacesId, appName, summary, body, actions, hints, icon, timeout});
    onScreen.insert_or_assign(id, calls.back());
    if (closesBeforeAnswering) {
        close(id, 2);
    }
    if (holdsAnswers) {
        setDelayedReply(true);
        held.push_back(message().createReply(id));
    }
    return givesNoId ? 0 : id;
}

void FakeNotificationService::CloseNotification(uint id) {
    closeCalls.push_back(id);
    if (onScreen.contains(id)) {
        close(id, closedByCall);
    }
}

void FakeNotificationService::close(uint id, uint reason) {
    onScreen.erase(id);
    emit NotificationClosed(id, reason);
}

void FakeNotificationService::send(const QString& signal, const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createSignal(servicePath, serviceName, signal);
    message.setArguments(arguments);
    bus_.send(message);
}

void FakeNotificationService::answerHeld(std::size_t most) {
    for (; most > 0 && !held.empty(); --most) {
        bus_.send(held.front());
        held.pop_front();
    }
}

} // namespace velloway::test
