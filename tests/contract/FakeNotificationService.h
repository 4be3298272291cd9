#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <cstddef>
#include <deque>
#include <limits>
#include <map>
#include <vector>

namespace velloway::test {

/// A notification service on the session bus, on a connection of its own, that does as it is told.
class FakeNotificationService : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    struct Notification {
        uint id;
        uint replacesId;
        QString appName;
        QString summary;
        QString body;
        QStringList actions;
        QVariantMap hints;
        QString icon;
        int timeout;
    };

    explicit FakeNotificationService(QStringList offered = {"body", "actions"});
    ~FakeNotificationService() override;

    /// What a user does.
    void reply(uint id, const QString& text) { emit NotificationReplied(id, text); }
    void invoke(uint id, const QString& key) { emit ActionInvoked(id, key); }
    void close(uint id, uint reason);
    /// A signal with other arguments than it ought to have.
    void send(const QString& signal, const QVariantList& arguments);

    /// Answers the calls that were held back, or the oldest so many of them.
    void answerHeld(std::size_t most = std::numeric_limits<std::size_t>::max());

    QStringList capabilities;
    int capabilityQuestions = 0;
    bool holdsCapabilities = false;
    bool holdsAnswers = false;
    /// Reports each notification as closed by the user before it answers with its id.
    bool closesBeforeAnswering = false;
    /// Answers with 0 in place of an id.
    bool givesNoId = false;
    /// As many calls of Notify fail with this error.
    QString errorName;
    int errorsLeft = 0;

    std::vector<Notification> calls;
    std::map<uint, Notification> onScreen;
    std::vector<uint> closeCalls;
    std::deque<QDBusMessage> held;

public slots:
    QStringList GetCapabilities();
    uint Notify(const QString& appName, uint replacesId, const QString& icon, const QString& summary,
                const QString& body, const QStringList& actions, const QVariantMap& hints, int timeout);
    void CloseNotification(uint id);

signals:
    void NotificationClosed(uint id, uint reason);
    void ActionInvoked(uint id, const QString& key);
    void NotificationReplied(uint id, const QString& text);

private:
    QDBusConnection bus_;
    uint nextId_;
};

} // namespace velloway::test
