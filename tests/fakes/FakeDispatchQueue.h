#pragma once

#include "platform/DispatchQueue.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <vector>

namespace velloway::test {

/// A queue whose jobs run only when the test says so. Delayed jobs follow a clock that only `advance` moves.
class FakeDispatchQueue : public DispatchQueue {
public:
    void async(Job job) override { jobs_.push_back(std::move(job)); }

    void asyncAfter(std::chrono::nanoseconds delay, Job job) override {
        delayed_.push_back({now_ + delay, nextOrder_++, std::move(job)});
    }

    bool isCurrent() const override { return isRunning_; }

    /// Runs one job; false when there is none.
    bool runOne() {
        if (jobs_.empty()) {
            return false;
        }
        Job job = std::move(jobs_.front());
        jobs_.pop_front();
        const bool wasRunning = std::exchange(isRunning_, true);
        job();
        isRunning_ = wasRunning;
        return true;
    }

    /// Runs until nothing is left, jobs added meanwhile included. Returns how many ran.
    std::size_t runAll() {
        std::size_t count = 0;
        while (runOne()) {
            ++count;
        }
        return count;
    }

    /// Moves the clock; jobs that fall due are queued in the order of their times, and run.
    void advance(std::chrono::nanoseconds by) {
        now_ += by;
        std::vector<Delayed> due;
        std::erase_if(delayed_, [&](Delayed& entry) {
            if (entry.at > now_) {
                return false;
            }
            due.push_back(std::move(entry));
            return true;
        });
        std::sort(due.begin(), due.end(), [](const Delayed& a, const Delayed& b) {
            return a.at != b.at ? a.at < b.at : a.order < b.order;
        });
        for (Delayed& entry : due) {
            jobs_.push_back(std::move(entry.job));
        }
        runAll();
    }

    std::size_t pending() const { return jobs_.size(); }
    std::size_t pendingDelayed() const { return delayed_.size(); }

private:
    struct Delayed {
        std::chrono::nanoseconds at;
        std::uint64_t order;
        Job job;
    };

    std::deque<Job> jobs_;
    std::vector<Delayed> delayed_;
    std::chrono::nanoseconds now_{0};
    std::uint64_t nextOrder_ = 0;
    bool isRunning_ = false;
};

/// Runs the queues until none has a job left.
template <class... Queues> void drain(Queues&... queues) {
    while ((queues.runAll() + ...) > 0) {
    }
}

} // namespace velloway::test
