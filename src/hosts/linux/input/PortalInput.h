#pragma once

#include "hosts/linux/input/InputBackend.h"

#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <atomic>
#include <cstdint>
#include <vector>

class QDBusMessage;
class QDBusPendingCallWatcher;

namespace velloway {

/// Input on a Wayland desktop, through a remote-desktop session of its portal. The user is asked when access is
/// requested; one session serves from then on, until the user or the desktop closes it. Input without a session
/// is dropped.
///
/// Made and destroyed on the main thread. Whatever comes from other threads is done on the main thread.
class PortalInput : public QObject, public InputBackend {
    Q_OBJECT

public:
    PortalInput();
    ~PortalInput() override;

    bool isReady() const override { return isReady_; }
    void requestAccess() override;

    void postKey(KeyStroke stroke, bool isDown) override;
    void postText(std::u16string text) override;
    /// Nobody tells where the pointer is; this position only sums up the moves.
    std::optional<Point> pointerPosition() override;
    void movePointer(Point to) override;
    void postButton(MouseButton button, bool isDown) override;

private slots:
    void requestResponded(uint code, const QVariantMap& results);
    void sessionClosed();

private:
    enum class Step { none, createSession, selectDevices, start, started };

    void begin();
    void advance(const QVariantMap& results);
    void createSession();
    void selectDevices();
    void start();
    void fail();
    void request(const QString& method, QVariantList arguments, QVariantMap options);
    void watchRequest(const QString& path);
    void forgetRequest();
    void callFinished(QDBusPendingCallWatcher* watcher);
    void closeSession();

    void sendKeysym(std::uint32_t keysym, bool isDown);
    void notify(const QString& method, const QVariantList& arguments);

    QDBusConnection bus_;
    Step step_ = Step::none;
    /// Tells a late answer to an earlier question from one to the present question.
    unsigned requestCount_ = 0;
    QString requestPath_;
    QDBusObjectPath session_;
    QString restoreToken_;
    std::uint32_t devices_ = 0;
    Point position_;
    std::atomic<bool> isReady_ = false;
};

} // namespace velloway
