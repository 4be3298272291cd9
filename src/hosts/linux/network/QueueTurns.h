#pragma once

#include <functional>

namespace velloway {

/// What others do on the thread of a queue beside its jobs.
struct QueueTurns {
    /// Once, before the first job.
    std::function<void()> began;
    /// After each turn of the event loop: one batch of jobs, or what one read of a socket has brought.
    std::function<void()> ended;
};

} // namespace velloway
