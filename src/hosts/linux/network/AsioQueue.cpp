#include "hosts/linux/network/AsioQueue.h"

#include "hosts/linux/network/AsioLoop.h"

#include <utility>

namespace velloway {

AsioQueue::AsioQueue(const std::string& name, QueueTurns turns)
    : loop_(std::make_unique<AsioLoop>(name, std::move(turns))) {}

AsioQueue::~AsioQueue() = default;

bool AsioQueue::end(std::chrono::milliseconds limit) {
    return loop_->end(limit);
}

bool AsioQueue::finish(std::chrono::milliseconds limit) {
    return loop_->finish(limit);
}

void AsioQueue::async(Job job) {
    loop_->add(std::move(job));
}

void AsioQueue::asyncAfter(std::chrono::nanoseconds delay, Job job) {
    loop_->add(delay, std::move(job));
}

bool AsioQueue::isCurrent() const {
    return loop_->isCurrent();
}

} // namespace velloway
