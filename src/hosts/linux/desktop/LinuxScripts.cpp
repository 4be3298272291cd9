#include "hosts/linux/desktop/LinuxScripts.h"

#include "hosts/linux/desktop/ChildProcess.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QPointer>
#include <QStandardPaths>
#include <QThreadPool>

#include <filesystem>
#include <system_error>
#include <utility>

namespace velloway {

namespace {

constexpr int volumeStep = 5;

/// Deletes what lies in the two folders of a trash, as much as can be, and returns the last error, or nothing.
std::string deleteContents(const std::filesystem::path& trash) {
    std::error_code lastError;
    for (const char* part : {"files", "info"}) {
        std::error_code error;
        for (std::filesystem::directory_iterator entry(trash / part, error), end; !error && entry != end;) {
            const std::filesystem::path path = entry->path();
            entry.increment(error);
            std::error_code deletionError;
            std::filesystem::remove_all(path, deletionError);
            lastError = deletionError ? deletionError : lastError;
        }
        if (error && error != std::errc::no_such_file_or_directory) {
            lastError = error;
        }
    }
    return lastError ? "The trash can't be emptied: " + lastError.message() : std::string();
}

} // namespace

LinuxScripts::LinuxScripts(ErrorHandler onLateError)
    : onLateError_(std::move(onLateError)),
      volume_([this](const std::string& error) { onLateError_(error); }) {}

std::optional<std::string> LinuxScripts::run(const SystemScript& script) {
    switch (script.action) {
    case SystemScript::Action::volumeUp:
        return volume_.change(volumeStep);
    case SystemScript::Action::volumeDown:
        return volume_.change(-volumeStep);
    case SystemScript::Action::openLocation:
        return openLocation(script.address);
    case SystemScript::Action::emptyTrash:
        return emptyTrash();
    case SystemScript::Action::lockScreen:
        // "auto" is the session of the caller, or the user's own one on a display.
        return callLogin("/org/freedesktop/login1/session/auto", "org.freedesktop.login1.Session", "Lock", {});
    case SystemScript::Action::sleep: {
        constexpr bool mayAskForPassword = false;
        return callLogin("/org/freedesktop/login1", "org.freedesktop.login1.Manager", "Suspend",
                         {mayAskForPassword});
    }
    }
    return std::nullopt;
}

/// The address is one argument and never meets a shell. One that begins with a dash would be taken for an
/// option.
std::optional<std::string> LinuxScripts::openLocation(const std::string& address) {
    const QString text = QString::fromStdString(address);
    if (text.startsWith('-') || text.isEmpty()) {
        return "Not an address: " + address;
    }
    if (findProgram("xdg-open")) {
        return startProgram("xdg-open", {text});
    }
    QDBusMessage message =
        QDBusMessage::createMethodCall("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                                       "org.freedesktop.portal.OpenURI", "OpenURI");
    message.setArguments({QString(), text, QVariantMap()});
    return call(QDBusConnection::sessionBus(), message);
}

/// The desktop's tool knows the trash of every disk, but without its file service it does nothing and says so
/// to nobody. Hence the trash in the home folder, where most of it lies, is emptied by ourselves as well.
std::optional<std::string> LinuxScripts::emptyTrash() {
    if (const auto gio = findProgram("gio")) {
        startChild(*this, *gio, {"trash", "--empty"}, [this](const ChildResult&) { emptyHomeTrash(); });
    } else {
        emptyHomeTrash();
    }
    return std::nullopt;
}

/// Much may lie in the trash, so another thread deletes it.
void LinuxScripts::emptyHomeTrash() {
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    QThreadPool::globalInstance()->start(
        [scripts = QPointer<LinuxScripts>(this), trash = data.toStdString() + "/Trash"] {
            const std::string error = deleteContents(trash);
            if (!error.empty()) {
                QMetaObject::invokeMethod(qApp, [scripts, error] {
                    if (scripts) {
                        scripts->onLateError_(error);
                    }
                });
            }
        });
}

std::optional<std::string> LinuxScripts::startProgram(const QString& name, const QStringList& arguments) {
    const auto program = findProgram(name);
    if (!program) {
        return name.toStdString() + " is not installed.";
    }
    startChild(*this, *program, arguments, [this](const ChildResult& result) {
        if (!result.succeeded()) {
            onLateError_(result.complaint);
        }
    });
    return std::nullopt;
}

std::optional<std::string> LinuxScripts::callLogin(const QString& path, const QString& interface,
                                                   const QString& method, const QVariantList& arguments) {
    QDBusMessage message = QDBusMessage::createMethodCall("org.freedesktop.login1", path, interface, method);
    message.setArguments(arguments);
    return call(QDBusConnection::systemBus(), message);
}

std::optional<std::string> LinuxScripts::call(const QDBusConnection& bus, const QDBusMessage& message) {
    if (!bus.isConnected()) {
        return "No message bus: " + bus.lastError().message().toStdString();
    }
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* finished) {
        finished->deleteLater();
        if (finished->isError()) {
            const QDBusError error = finished->error();
            onLateError_((error.name() + ": " + error.message()).toStdString());
        }
    });
    return std::nullopt;
}

} // namespace velloway
