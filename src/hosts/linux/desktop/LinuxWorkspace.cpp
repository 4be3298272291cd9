#include "hosts/linux/desktop/LinuxWorkspace.h"

#include "hosts/linux/desktop/FileUris.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusUnixFileDescriptor>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>

#include <array>
#include <fcntl.h>
#include <functional>
#include <unistd.h>

namespace velloway {

namespace {

/// One way to a page of settings: on desktops whose name contains `desktop`, start `program`.
struct SettingsProgram {
    QLatin1String desktop;
    QLatin1String program;
    QLatin1String notifications;
    QLatin1String accessibility;
};

/// The first that is installed counts. An empty page means that the program is the page.
constexpr std::array<SettingsProgram, 5> settingsPrograms{{
    {QLatin1String("GNOME"), QLatin1String("gnome-control-center"), QLatin1String("notifications"),
     QLatin1String("universal-access")},
    {QLatin1String("Budgie"), QLatin1String("budgie-control-center"), QLatin1String("notifications"),
     QLatin1String("universal-access")},
    {QLatin1String("KDE"), QLatin1String("systemsettings"), QLatin1String("kcm_notifications"),
     QLatin1String("kcm_access")},
    {QLatin1String("KDE"), QLatin1String("systemsettings5"), QLatin1String("kcm_notifications"),
     QLatin1String("kcm_access")},
    {QLatin1String("Cinnamon"), QLatin1String("cinnamon-settings"), QLatin1String("notifications"),
     QLatin1String("accessibility")},
}};

struct SinglePagePrograms {
    QLatin1String desktop;
    QLatin1String notifications;
    QLatin1String accessibility;
};

constexpr std::array<SinglePagePrograms, 3> singlePagePrograms{{
    {QLatin1String("XFCE"), QLatin1String("xfce4-notifyd-config"),
     QLatin1String("xfce4-accessibility-settings")},
    {QLatin1String("MATE"), QLatin1String("mate-notification-properties"), QLatin1String("mate-at-properties")},
    {QLatin1String("LXQt"), QLatin1String("lxqt-config-notificationd"), QLatin1String("lxqt-config-input")},
}};

/// Starts a program that lives on by itself; its output goes nowhere.
bool startDetached(const QString& program, const QStringList& arguments) {
    if (QStandardPaths::findExecutable(program).isEmpty()) {
        return false;
    }
    QProcess process;
    process.setProgram(program);
    process.setArguments(arguments);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    return process.startDetached();
}

void openByProgram(const QString& address) {
    startDetached(QStringLiteral("xdg-open"), {address});
}

/// Calls without waiting; `otherwise` runs when the call failed, at once when there is no bus.
void call(QObject* owner, const QDBusMessage& message, std::function<void()> otherwise) {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        otherwise();
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), owner);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, owner,
                     [otherwise = std::move(otherwise)](QDBusPendingCallWatcher* finished) {
                         finished->deleteLater();
                         if (finished->isError()) {
                             otherwise();
                         }
                     });
}

QDBusMessage portalCall(const QString& method) {
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.portal.Desktop"),
                                          QStringLiteral("/org/freedesktop/portal/desktop"),
                                          QStringLiteral("org.freedesktop.portal.OpenURI"), method);
}

void openFolderByPortal(QObject* owner, const std::filesystem::path& file) {
    const auto openFolder = [file] { openByProgram(QString::fromStdString(fileUri(file.parent_path()))); };
    const int descriptor = ::open(file.c_str(), O_PATH | O_CLOEXEC);
    if (descriptor < 0) {
        openFolder();
        return;
    }
    QDBusUnixFileDescriptor handle;
    handle.giveFileDescriptor(descriptor);
    QDBusMessage message = portalCall(QStringLiteral("OpenDirectory"));
    message.setArguments({QString(), QVariant::fromValue(handle), QVariantMap()});
    call(owner, message, openFolder);
}

} // namespace

void LinuxWorkspace::open(std::string_view address) {
    const QString text = QString::fromUtf8(address.data(), static_cast<qsizetype>(address.size()));
    QDBusMessage message = portalCall(QStringLiteral("OpenURI"));
    message.setArguments({QString(), text, QVariantMap()});
    call(this, message, [text] { openByProgram(text); });
}

void LinuxWorkspace::openSettings(SettingsPane pane) {
    const bool isNotifications = pane == SettingsPane::notifications;
    const QString desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP");
    for (const SettingsProgram& candidate : settingsPrograms) {
        const QLatin1String page = isNotifications ? candidate.notifications : candidate.accessibility;
        if (desktop.contains(candidate.desktop, Qt::CaseInsensitive) &&
            startDetached(candidate.program, {page})) {
            return;
        }
    }
    for (const SinglePagePrograms& candidate : singlePagePrograms) {
        const QLatin1String program = isNotifications ? candidate.notifications : candidate.accessibility;
        if (desktop.contains(candidate.desktop, Qt::CaseInsensitive) && startDetached(program, {})) {
            return;
        }
    }
}

void LinuxWorkspace::activateFileViewerSelecting(const std::filesystem::path& file) {
    QDBusMessage message = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    message.setArguments({QStringList{QString::fromStdString(fileUri(file))}, QString()});
    call(this, message, [this, file] { openFolderByPortal(this, file); });
}

} // namespace velloway
