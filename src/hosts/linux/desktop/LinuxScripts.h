#pragma once

#include "hosts/linux/desktop/VolumeControl.h"
#include "platform/Scripts.h"

#include <QObject>
#include <QString>
#include <QVariantList>

#include <functional>
#include <optional>
#include <string>

class QDBusConnection;
class QDBusMessage;

namespace velloway {

/// Does what a script asks by the desktop's own services. Nothing here waits: an action is started, and what
/// goes wrong later is reported to the handler, once for each action. Main thread, within a QCoreApplication.
class LinuxScripts : public QObject, public Scripts {
public:
    using ErrorHandler = std::function<void(const std::string& error)>;

    explicit LinuxScripts(ErrorHandler onLateError);

    /// Returns an error text if the action can't even be started.
    std::optional<std::string> run(const SystemScript& script) override;

private:
    std::optional<std::string> openLocation(const std::string& address);
    std::optional<std::string> emptyTrash();
    void emptyHomeTrash();
    std::optional<std::string> callLogin(const QString& path, const QString& interface, const QString& method,
                                         const QVariantList& arguments);
    std::optional<std::string> call(const QDBusConnection& bus, const QDBusMessage& message);
    std::optional<std::string> startProgram(const QString& name, const QStringList& arguments);

    ErrorHandler onLateError_;
    VolumeControl volume_;
};

} // namespace velloway
