#include "hosts/linux/desktop/ChildProcess.h"

#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>
#include <QTimer>

#include <utility>

namespace velloway {

namespace {

ChildResult resultOf(QProcess& process) {
    ChildResult result;
    result.output = process.readAllStandardOutput().toStdString();
    QString complaint = QString::fromUtf8(process.readAllStandardError()).simplified();
    const bool hasEnded =
        process.error() == QProcess::UnknownError && process.exitStatus() == QProcess::NormalExit;
    if (hasEnded) {
        result.exitCode = process.exitCode();
    }
    if (complaint.isEmpty()) {
        complaint = hasEnded ? QStringLiteral("exit code %1").arg(process.exitCode()) : process.errorString();
    }
    result.complaint = (process.program().section('/', -1) + ": " + complaint).toStdString();
    return result;
}

} // namespace

void startChild(QObject& owner, const QString& program, const QStringList& arguments, ChildDone done,
                std::optional<std::chrono::milliseconds> timeLimit) {
    auto* process = new QProcess(&owner);
    // The answers are read by program, so they must not be translated.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C.UTF-8"));
    process->setProcessEnvironment(environment);
    process->setStandardInputFile(QProcess::nullDevice());

    const auto finish = [process, done = std::move(done)] {
        process->deleteLater();
        done(resultOf(*process));
    };
    QObject::connect(process, &QProcess::finished, &owner, finish);
    QObject::connect(process, &QProcess::errorOccurred, &owner, [finish](QProcess::ProcessError error) {
        // After any other error `finished` comes too.
        if (error == QProcess::FailedToStart) {
            finish();
        }
    });
    if (timeLimit) {
        QTimer::singleShot(*timeLimit, process, &QProcess::kill);
    }
    process->start(program, arguments);
}

std::optional<QString> findProgram(const QString& name) {
    const QString path = QStandardPaths::findExecutable(name);
    return path.isEmpty() ? std::nullopt : std::optional(path);
}

} // namespace velloway
