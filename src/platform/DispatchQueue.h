#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <utility>

namespace velloway {

/// A serial queue: jobs run one at a time, in the order in which they were handed over.
///
/// There are four in the program: the main queue, the server queue, and two whose jobs may wait for the
/// storage, the file queue, which writes, and the reading queue. Every object says which one its operations
/// belong to. All operations may be called from any thread.
class DispatchQueue {
public:
    using Job = std::function<void()>;

    virtual ~DispatchQueue() = default;

    /// Never runs `job` inside the call, even when called on the queue itself.
    virtual void async(Job job) = 0;

    /// Runs `job` once `delay` has passed; jobs that fall due together keep their order.
    virtual void asyncAfter(std::chrono::nanoseconds delay, Job job) = 0;

    /// Whether the calling thread is now running a job of this queue.
    virtual bool isCurrent() const = 0;
};

/// Hands `step` over to `queue`, holding `owner` weakly: the step is skipped if the owner has gone by then.
template <class Owner, class Step>
void hop(DispatchQueue& queue, const std::weak_ptr<Owner>& owner, Step step) {
    queue.async([owner, step = std::move(step)]() mutable {
        if (auto alive = owner.lock()) {
            step(*alive);
        }
    });
}

} // namespace velloway
