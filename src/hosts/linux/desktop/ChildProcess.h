#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace velloway {

struct ChildResult {
    /// Absent when the program did not start, crashed or took too long.
    std::optional<int> exitCode;
    std::string output;
    /// What to report to the user when the program failed.
    std::string complaint;

    bool succeeded() const { return exitCode == 0; }
};

using ChildDone = std::function<void(const ChildResult&)>;

/// Starts a program with these arguments, never through a shell, and returns at once. `done` is called later on
/// the same thread, or never if `owner` has gone by then; the program is ended with its owner.
void startChild(QObject& owner, const QString& program, const QStringList& arguments, ChildDone done,
                std::optional<std::chrono::milliseconds> timeLimit = {});

/// Where a program of this name is, looking along PATH.
std::optional<QString> findProgram(const QString& name);

} // namespace velloway
