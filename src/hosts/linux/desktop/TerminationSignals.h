#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace velloway {

/// Turns a request of the system to end (at logout, or by Ctrl-C in a terminal) into a call on the main thread,
/// so that the process ends the same way as by its menu. One per process.
class TerminationSignals {
public:
    explicit TerminationSignals(std::function<void()> requested);
    ~TerminationSignals();

private:
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace velloway
