#include "hosts/linux/network/AsioLoop.h"

#include <boost/asio/post.hpp>

#include <algorithm>
#include <memory>
#include <utility>

#include <pthread.h>

namespace velloway {

namespace net = boost::asio;

namespace {

constexpr std::size_t longestThreadName = 15;

} // namespace

AsioLoop::AsioLoop(const std::string& name, QueueTurns turns)
    : turns_(std::move(turns)), thread_([this, name] {
          pthread_setname_np(pthread_self(), name.substr(0, longestThreadName).c_str());
          run();
          hasReturned_.set_value();
      }) {}

void AsioLoop::run() {
    if (turns_.began) {
        turns_.began();
    }
    while (context_->run_one() > 0) {
        if (turns_.ended) {
            turns_.ended();
        }
    }
}

AsioLoop::~AsioLoop() {
    if (context_) {
        stop();
        cleanUp();
    }
    // Sockets that were made after the end have nothing but the registration.
    endResidents();
}

bool AsioLoop::end(std::chrono::milliseconds limit) {
    if (!context_) {
        return true;
    }
    stop();
    if (returned_.wait_for(limit) == std::future_status::timeout) {
        return false;
    }
    cleanUp();
    return true;
}

bool AsioLoop::finish(std::chrono::milliseconds limit) {
    const auto until = Clock::now() + limit;
    auto last = std::make_shared<std::promise<void>>();
    const auto ran = last->get_future();
    // Dropped, it ends the wait as well.
    add([last = std::move(last)] { last->set_value(); });
    ran.wait_until(until);
    const auto rest = std::chrono::duration_cast<std::chrono::milliseconds>(until - Clock::now());
    return end(std::max(rest, std::chrono::milliseconds(0)));
}

// The event loop is woken when the lock is free again: its thread may run at once, on the processor of the one
// that woke it, and would have to wait for the lock. The loop goes soon after `isEnded_` is set, but not while
// it is being woken.

void AsioLoop::add(Job job) {
    {
        const std::lock_guard lock(mutex_);
        if (isEnded_) {
            return;
        }
        jobs_.push_back(std::move(job));
        if (jobs_.size() > 1) {
            return;
        }
        ++waking_;
    }
    net::post(*context_, [this] { runJobs(); });
    --waking_;
}

void AsioLoop::add(std::chrono::nanoseconds delay, Job job) {
    const auto due = Clock::now() + delay;
    {
        const std::lock_guard lock(mutex_);
        if (isEnded_) {
            return;
        }
        const auto place = delayed_.emplace(due, std::move(job));
        if (place != delayed_.begin()) {
            return;
        }
        ++waking_;
    }
    net::post(*context_, [this] { armTimer(); });
    --waking_;
}

bool AsioLoop::isCurrent() {
    return context_ && context_->get_executor().running_in_this_thread();
}

void AsioLoop::add(AsioResident& resident) {
    std::lock_guard lock(mutex_);
    residents_.insert(&resident);
}

void AsioLoop::remove(AsioResident& resident) {
    std::lock_guard lock(mutex_);
    residents_.erase(&resident);
}

void AsioLoop::stop() {
    {
        std::lock_guard lock(mutex_);
        isEnded_ = true;
    }
    context_->stop();
}

void AsioLoop::cleanUp() {
    thread_.join();
    while (waking_ > 0) {
        std::this_thread::yield();
    }
    endResidents();
    dropJobs();
    timer_.reset();
    guard_.reset();
    context_.reset();
}

/// Runs what is there now. Jobs that come meanwhile wait for the next turn, so that sockets get theirs.
void AsioLoop::runJobs() {
    {
        std::lock_guard lock(mutex_);
        running_.swap(jobs_);
    }
    for (Job& job : running_) {
        job();
        job = nullptr;
        if (context_->stopped()) {
            break;
        }
    }
    running_.clear();
}

void AsioLoop::armTimer() {
    Clock::time_point due;
    {
        std::lock_guard lock(mutex_);
        if (delayed_.empty()) {
            return;
        }
        due = delayed_.begin()->first;
    }
    timer_->expires_at(due);
    timer_->async_wait([this](const boost::system::error_code& error) {
        if (!error) {
            runDelayed();
        }
    });
}

void AsioLoop::runDelayed() {
    const auto now = Clock::now();
    while (!context_->stopped()) {
        Job job;
        {
            std::lock_guard lock(mutex_);
            if (delayed_.empty() || delayed_.begin()->first > now) {
                break;
            }
            job = std::move(delayed_.begin()->second);
            delayed_.erase(delayed_.begin());
        }
        job();
    }
    armTimer();
}

void AsioLoop::endResidents() {
    for (;;) {
        AsioResident* resident = nullptr;
        {
            std::lock_guard lock(mutex_);
            if (residents_.empty()) {
                return;
            }
            resident = residents_.extract(residents_.begin()).value();
        }
        resident->queueEnds();
    }
}

/// Not under the lock: what a job holds may hand over further jobs as it goes.
void AsioLoop::dropJobs() {
    std::vector<Job> jobs;
    std::multimap<Clock::time_point, Job> delayed;
    const std::lock_guard lock(mutex_);
    jobs.swap(jobs_);
    delayed.swap(delayed_);
}

} // namespace velloway
