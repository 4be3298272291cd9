#pragma once

#include "desktop/WaitFor.h"

#include <QByteArray>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QJsonValue>
#include <QProcess>

namespace velloway::test {

/// A tray in a process of its own (tests/desktop/tray-host says what it can do). The event loop runs while it
/// is asked, because what it asks in turn is this process.
class TrayHost {
public:
    explicit TrayHost(const QString& program, const QStringList& arguments = {}) {
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process_.start(program, arguments);
        isReady_ = waitFor([this] { return process_.canReadLine(); }) && process_.readLine() == "ready\n";
    }
    ~TrayHost() {
        process_.closeWriteChannel();
        process_.waitForFinished();
    }

    bool isReady() const { return isReady_; }

    QJsonValue ask(const QByteArray& command) {
        process_.write(command + '\n');
        if (!waitFor([this] { return process_.canReadLine(); })) {
            return {};
        }
        // Wrapped, because a plain value is no document.
        return QJsonDocument::fromJson('[' + process_.readLine().trimmed() + ']').array().at(0);
    }

    qsizetype itemCount() { return ask("items").toArray().size(); }

private:
    QProcess process_;
    bool isReady_ = false;
};

} // namespace velloway::test
