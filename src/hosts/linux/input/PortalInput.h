#pragma once

#include "hosts/linux/input/LinuxInput.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <atomic>
#include <cstdint>
#include <deque>
#include <vector>

class QDBusPendingCallWatcher;

namespace velloway {

/// Input on a Wayland desktop, through a remote-desktop session of its portal. The user is asked when access is
/// requested; one session serves from then on, until the user or the desktop closes it. Input without a session
/// is dropped. The permission is kept in the settings, so that the user is asked once, until it is revoked.
///
/// A portal may handle calls side by side, so each piece of input waits for the answer to the one before.
///
/// Made and destroyed on the main thread. Whatever comes from other threads is done on the main thread.
class PortalInput : public QObject, public LinuxInput {
    Q_OBJECT

public:
    explicit PortalInput(InputNeeds needs = {});
    ~PortalInput() override;

    bool isTrusted() override { return isReady_; }
    bool isTrustedWithPrompt() override;
    bool canAsk() override;

    void pressKey(Key key, Modifiers modifiers) override;
    void typeText(std::string_view text) override;
    void pressMediaKey(MediaKey key) override;
    void movePointer(double dx, double dy) override;
    void click(MouseButton button) override;

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

    void sendTogether(std::vector<std::uint32_t> keysyms);
    void sendKeysym(std::uint32_t keysym, bool isDown);
    void notify(const QString& method, const QVariantList& arguments);
    void sendNext();
    void setToken(const QString& token);

    const InputNeeds needs_;
    QDBusConnection bus_;
    Step step_ = Step::none;
    /// Sets a late answer to an earlier request apart from one to the present request.
    unsigned requestCount_ = 0;
    QString requestPath_;
    QDBusObjectPath session_;
    QString restoreToken_;
    std::uint32_t devices_ = 0;
    std::atomic<bool> isReady_ = false;
    /// Input whose turn has not come.
    std::deque<QDBusMessage> waiting_;
    bool isAwaitingAnswer_ = false;
};

} // namespace velloway
