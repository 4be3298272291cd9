#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <vector>

namespace velloway::bench {

/// Notes when each move of the pointer arrives.
class MoveTimes {
public:
    using Clock = std::chrono::steady_clock;

    /// Before the first move of a case is sent.
    void expect(std::size_t moves) {
        arrivedAt_.assign(moves, {});
        count_.store(0, std::memory_order_release);
    }

    /// The next move has arrived. Always from the same thread.
    void note() {
        const std::size_t index = count_.load(std::memory_order_relaxed);
        if (index < arrivedAt_.size()) {
            arrivedAt_[index] = Clock::now();
        }
        count_.store(index + 1, std::memory_order_release);
    }

    bool hasAll() const { return count_.load(std::memory_order_acquire) >= arrivedAt_.size(); }
    /// Once `hasAll`.
    const std::vector<Clock::time_point>& arrivedAt() const { return arrivedAt_; }

private:
    std::vector<Clock::time_point> arrivedAt_;
    std::atomic<std::size_t> count_ = 0;
};

} // namespace velloway::bench
