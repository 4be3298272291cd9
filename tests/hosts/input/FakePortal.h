#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <QStringList>
#include <QThreadPool>
#include <QVariantMap>

#include <functional>
#include <optional>
#include <vector>

namespace velloway::test {

/// A desktop portal that offers remote-desktop sessions, with a user who does what the test says. It handles
/// input on several threads that take unequal time, so that calls under way together overtake one another.
class FakePortal : public QDBusVirtualObject {
public:
    FakePortal();
    ~FakePortal() override;

    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

    /// Answers the question that the user is looking at: 0 is yes, 1 is no.
    void answer(unsigned code);
    bool isAsking() const { return question_.has_value(); }
    /// As when the user stops the sharing.
    void closeSession() { closeSession(session_); }
    /// Also of one that has ended already.
    void closeSession(const QString& session);
    const QString& session() const { return session_; }
    void leaveTheBus();
    std::vector<std::function<void()>> takeHeld();

    /// Each call but the pieces of input, by name.
    QStringList calls;
    /// Each piece of input: the method and its numbers.
    QStringList input;
    QVariantMap selectOptions;
    unsigned devices = 3;
    /// As old desktops do. The answers to its requests are held then, as nobody can listen for one before the
    /// reply that names its path has arrived.
    bool choosesItsOwnPaths = false;
    bool refusesSessions = false;

private:
    struct Request {
        QString client;
        QString path;
    };

    Request acknowledge(const QDBusMessage& message, const QVariantMap& options);
    void respond(const Request& request, unsigned code, const QVariantMap& results);
    void handleInput(const QDBusMessage& message);
    void noteInput(const QDBusMessage& message);

    QDBusConnection bus_;
    int sessionCount_ = 0;
    QString client_;
    QString session_;
    std::optional<Request> question_;
    std::vector<std::function<void()>> held_;
    int inputCount_ = 0;
    QThreadPool workers_;
};

} // namespace velloway::test
