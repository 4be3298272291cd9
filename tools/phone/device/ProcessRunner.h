#pragma once

#include "phone/Loop.h"
#include "phone/device/CommandRunner.h"

#include <deque>
#include <memory>
#include <set>
#include <utility>

namespace velloway::phone::device {

/// Runs commands as child processes, a few at a time in the order in which they were given; the others wait.
class ProcessRunner : public CommandRunner {
public:
    explicit ProcessRunner(Loop& loop) : loop_(loop) {}
    /// Kills what still runs.
    ~ProcessRunner() override;

    void run(CommandLine line, std::function<void(CommandResult)> done) override;

private:
    class Child;
    void startNext();

    Loop& loop_;
    std::deque<std::pair<CommandLine, std::function<void(CommandResult)>>> waiting_;
    std::set<std::shared_ptr<Child>> running_;
};

} // namespace velloway::phone::device
