#pragma once

#include <functional>
#include <string>
#include <vector>

namespace velloway::phone::device {

struct CommandResult {
    enum class End { exited, missing, tookTooLong };
    End end = End::exited;
    int exitCode = 0;
    std::string output;
    /// What the command wrote as its errors.
    std::string errors;
};

struct CommandLine {
    /// The program, looked up on the PATH, and its arguments. No shell reads them.
    std::vector<std::string> words;
    /// What the command reads.
    std::string input = {};
    /// Seconds after which the command and its children are killed.
    double limit = 20;
};

/// Whether a program of this name can be run.
bool isOnPath(const std::string& program);

/// Runs commands beside the loop. `done` comes on the loop, never from within `run`.
class CommandRunner {
public:
    virtual ~CommandRunner() = default;
    virtual void run(CommandLine line, std::function<void(CommandResult)> done) = 0;
};

} // namespace velloway::phone::device
