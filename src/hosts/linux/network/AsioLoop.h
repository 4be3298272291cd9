#pragma once

#include "hosts/linux/network/AsioResident.h"
#include "hosts/linux/network/QueueTurns.h"
#include "platform/DispatchQueue.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <future>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace velloway {

/// The thread of an `AsioQueue` with its event loop, for the sockets of this folder: everybody else includes
/// `AsioQueue.h`, which brings no Asio with it.
///
/// Jobs wait in a plain vector, and the event loop is woken only when the vector was empty: handing over a job
/// costs a lock and no allocation of its own.
class AsioLoop {
public:
    using Job = DispatchQueue::Job;

    AsioLoop(const std::string& name, QueueTurns turns);
    ~AsioLoop();
    AsioLoop(const AsioLoop&) = delete;
    AsioLoop& operator=(const AsioLoop&) = delete;

    // As in `AsioQueue`.
    bool end(std::chrono::milliseconds limit);
    bool finish(std::chrono::milliseconds limit);
    void add(Job job);
    void add(std::chrono::nanoseconds delay, Job job);
    bool isCurrent();

    // Any thread. A resident stays valid until it is removed or `queueEnds` has been called.
    void add(AsioResident& resident);
    void remove(AsioResident& resident);

    /// Must not be used after the end.
    boost::asio::io_context& context() { return *context_; }

private:
    using Clock = std::chrono::steady_clock;

    void run();
    void stop();
    void cleanUp();
    void runJobs();
    void armTimer();
    void runDelayed();
    void endResidents();
    void dropJobs();

    const QueueTurns turns_;
    std::optional<boost::asio::io_context> context_{std::in_place, 1};

    std::mutex mutex_;
    std::vector<Job> jobs_;
    /// Equal times keep the order in which they were handed over.
    std::multimap<Clock::time_point, Job> delayed_;
    bool isEnded_ = false;
    /// How many threads are waking the event loop. Grows under the lock, and not after the end.
    std::atomic<int> waking_ = 0;
    std::set<AsioResident*> residents_;

    std::vector<Job> running_;
    std::optional<boost::asio::executor_work_guard<boost::asio::io_context::executor_type>> guard_{
        boost::asio::make_work_guard(*context_)};
    std::optional<boost::asio::steady_timer> timer_{*context_};
    std::promise<void> hasReturned_;
    std::future<void> returned_ = hasReturned_.get_future();
    std::thread thread_;
};

} // namespace velloway
