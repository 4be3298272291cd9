#pragma once

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>
#include <QPalette>

namespace velloway {

/// Gives the application the light or dark colours that the user has chosen for the desktop, and follows the
/// choice. Asks the desktop's portal without waiting; where there is none, or it has no preference, the colours
/// stay those that the toolkit found. Main thread.
class DesktopColors : public QObject {
    Q_OBJECT

public:
    explicit DesktopColors(QObject* parent = nullptr);

private slots:
    void settingChanged(const QString& space, const QString& key, const QDBusVariant& value);

private:
    void read();
    void apply(unsigned scheme);

    QDBusConnection bus_;
    /// Those that the toolkit found.
    const QPalette original_;
};

} // namespace velloway
