#pragma once

#include "hosts/linux/network/QueueTurns.h"
#include "platform/DispatchQueue.h"

#include <memory>
#include <string>

namespace velloway {

class AsioLoop;

/// A serial queue on a thread of its own, which also runs the sockets of `LinuxNetwork`.
///
/// The thread has the priority of all others, as a pointer move would wait for every busy program otherwise,
/// unless the turns say something else.
class AsioQueue final : public DispatchQueue {
public:
    /// `name` is what tools such as `top` show for the thread; at most 15 bytes of it are kept.
    explicit AsioQueue(const std::string& name, QueueTurns turns = {});

    /// Ends the queue as `end` does, however long the running job takes.
    ~AsioQueue() override;

    /// Ends the thread: the running job is finished, waiting jobs are destroyed without being run, and open
    /// connections drop without callbacks. Jobs handed over later are destroyed at once.
    ///
    /// Returns false when the running job takes longer than `limit`. The job then still runs and nothing that
    /// it uses may be destroyed. Not to be called on the queue itself.
    bool end(std::chrono::milliseconds limit);

    /// As `end`, but the jobs that wait are run first, as long as `limit` is not over.
    bool finish(std::chrono::milliseconds limit);

    AsioQueue(const AsioQueue&) = delete;
    AsioQueue& operator=(const AsioQueue&) = delete;

    void async(Job job) override;
    void asyncAfter(std::chrono::nanoseconds delay, Job job) override;
    bool isCurrent() const override;

    /// For the sockets of this folder.
    AsioLoop& loop() { return *loop_; }

private:
    std::unique_ptr<AsioLoop> loop_;
};

} // namespace velloway
