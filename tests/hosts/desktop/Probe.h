#pragma once

#include "desktop/WaitFor.h"

#include <QByteArray>
#include <QProcess>
#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <csignal>
#include <string>
#include <vector>

namespace velloway::test {

/// The desktop side in a process of its own: DesktopProbe.cpp, or another one that the environment names.
class Probe {
public:
    explicit Probe(const QProcessEnvironment& environment, const QStringList& arguments = {},
                   const QString& folder = {}) {
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process_.setProcessEnvironment(environment);
        process_.setWorkingDirectory(folder);
        process_.start(qEnvironmentVariable("DESKTOP_PROBE", QStringLiteral(DESKTOP_PROBE)), arguments);
    }
    ~Probe() {
        ::kill(static_cast<pid_t>(process_.processId()), SIGCONT);
        process_.closeWriteChannel();
        if (!process_.waitForFinished(5000)) {
            process_.kill();
            process_.waitForFinished();
        }
    }
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;

    bool says(const QByteArray& line) {
        return waitFor([&] { return hasSaid(line); });
    }
    bool hasSaid(const QByteArray& line) {
        while (process_.canReadLine()) {
            lines_.push_back(process_.readLine().trimmed().toStdString());
        }
        return std::find(lines_.begin(), lines_.end(), line.toStdString()) != lines_.end();
    }
    bool ends() {
        return waitFor([&] { return process_.state() == QProcess::NotRunning; });
    }
    bool isRunning() const { return process_.state() != QProcess::NotRunning; }
    int exitCode() const { return process_.exitCode(); }
    void command(const QByteArray& line) { process_.write(line + '\n'); }
    void stop() { ::kill(static_cast<pid_t>(process_.processId()), SIGSTOP); }
    void crash() { process_.kill(); }

private:
    QProcess process_;
    std::vector<std::string> lines_;
};

/// Whether a window of this name is on the screen.
inline bool isWindowShown(const QString& name) {
    QProcess search;
    search.start("xdotool", {"search", "--onlyvisible", "--name", '^' + name + '$'});
    search.waitForFinished();
    return search.exitCode() == 0;
}

} // namespace velloway::test
