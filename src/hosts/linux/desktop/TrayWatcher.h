#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>

namespace velloway {

/// Reports whether the desktop has a tray that takes items over the message bus, from the moment that a tray
/// asks for them until its service goes.
class TrayWatcher : public QObject {
    Q_OBJECT

public:
    TrayWatcher();

    /// False also once the bus itself has died, which no signal reports.
    bool isTrayThere() const { return isThere_ && bus_.isConnected(); }

signals:
    void trayAppeared();
    void trayGone();

private slots:
    void ask();

private:
    void ownerChanged(const QString& service, const QString& oldOwner, const QString& newOwner);
    void setThere(bool isThere);

    QDBusConnection bus_;
    QDBusServiceWatcher service_;
    bool isThere_ = false;
};

} // namespace velloway
