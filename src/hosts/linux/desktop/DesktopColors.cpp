#include "hosts/linux/desktop/DesktopColors.h"

#include <QApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QStyle>

namespace velloway {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settings = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");

constexpr unsigned preferDark = 1;
constexpr unsigned preferLight = 2;

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < 128;
}

QPalette darkPalette() {
    const QColor ground(0x1f, 0x1f, 0x21);
    const QColor button(0x3a, 0x3a, 0x3e);
    const QColor text(0xf5, 0xf5, 0xf7);
    const QColor faint(0x85, 0x85, 0x8b);
    QPalette palette(text, button, button.lighter(130), button.darker(160), button.darker(120), text, Qt::white,
                     QColor(0x2c, 0x2c, 0x2f), ground);
    palette.setColor(QPalette::AlternateBase, QColor(0x33, 0x33, 0x37));
    palette.setColor(QPalette::ToolTipBase, button);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, faint);
    palette.setColor(QPalette::Highlight, QColor(0x0a, 0x84, 0xff));
    palette.setColor(QPalette::Link, QColor(0x4d, 0xa3, 0xff));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, faint);
    }
    return palette;
}

} // namespace

DesktopColors::DesktopColors(QObject* parent)
    : QObject(parent), bus_(QDBusConnection::sessionBus()), original_(QApplication::palette()) {
    bus_.connect(service, path, settings, QStringLiteral("SettingChanged"), this,
                 SLOT(settingChanged(QString, QString, QDBusVariant)));
    read();
}

void DesktopColors::read() {
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, settings, QStringLiteral("Read"));
    call << appearance << colorScheme;
    auto* watcher = new QDBusPendingCallWatcher(bus_.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (reply.isError()) {
            return;
        }
        // The answer is wrapped once more than it need be.
        const QVariant value = reply.value().variant();
        apply(value.canConvert<QDBusVariant>() ? value.value<QDBusVariant>().variant().toUInt()
                                               : value.toUInt());
    });
}

void DesktopColors::settingChanged(const QString& space, const QString& key, const QDBusVariant& value) {
    if (space == appearance && key == colorScheme) {
        apply(value.variant().toUInt());
    }
}

void DesktopColors::apply(unsigned scheme) {
    if (scheme == preferDark) {
        QApplication::setPalette(isDark(original_) ? original_ : darkPalette());
    } else if (scheme == preferLight) {
        QApplication::setPalette(isDark(original_) ? QApplication::style()->standardPalette() : original_);
    } else {
        QApplication::setPalette(original_);
    }
}

} // namespace velloway
