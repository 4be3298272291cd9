#include "hosts/linux/network/AsioQueue.h"

#include "hosts/linux/network/AsioQueueAccess.h"

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>

#include <future>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <thread>
#include <vector>

#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace velloway {

namespace net = boost::asio;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int niceness = 5;

void prepareThread(const std::string& name) {
    pthread_setname_np(pthread_self(), name.substr(0, 15).c_str());
    // On this system a priority set for a thread's own number counts for that thread alone. A refusal only
    // means that the thread keeps the priority of the others.
    setpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid)), niceness);
}

} // namespace

/// Jobs wait in a plain vector, and the event loop is woken only when the vector was empty: handing over a job
/// costs a lock and no allocation of its own.
class AsioQueue::Loop {
public:
    explicit Loop(const std::string& name)
        : thread_([this, name] {
              prepareThread(name);
              context->run();
              hasReturned_.set_value();
          }) {}

    ~Loop() {
        if (context) {
            stop();
            cleanUp();
        }
        // Sockets that were made after the end have nothing but the registration.
        endResidents();
    }

    bool end(std::chrono::milliseconds limit) {
        if (!context) {
            return true;
        }
        stop();
        if (returned_.wait_for(limit) == std::future_status::timeout) {
            return false;
        }
        cleanUp();
        return true;
    }

    void add(Job job) {
        bool wasEmpty = false;
        {
            std::lock_guard lock(mutex_);
            if (isEnded_) {
                return;
            }
            wasEmpty = jobs_.empty();
            jobs_.push_back(std::move(job));
        }
        if (wasEmpty) {
            net::post(*context, [this] { runJobs(); });
        }
    }

    void add(std::chrono::nanoseconds delay, Job job) {
        const auto due = Clock::now() + delay;
        bool isFirst = false;
        {
            std::lock_guard lock(mutex_);
            if (isEnded_) {
                return;
            }
            const auto place = delayed_.emplace(due, std::move(job));
            isFirst = place == delayed_.begin();
        }
        if (isFirst) {
            net::post(*context, [this] { armTimer(); });
        }
    }

    bool isCurrent() { return context && context->get_executor().running_in_this_thread(); }

    void add(AsioResident& resident) {
        std::lock_guard lock(mutex_);
        residents_.insert(&resident);
    }

    void remove(AsioResident& resident) {
        std::lock_guard lock(mutex_);
        residents_.erase(&resident);
    }

    std::optional<net::io_context> context{std::in_place, 1};

private:
    void stop() {
        {
            std::lock_guard lock(mutex_);
            isEnded_ = true;
        }
        context->stop();
    }

    void cleanUp() {
        thread_.join();
        endResidents();
        dropJobs();
        timer_.reset();
        guard_.reset();
        context.reset();
    }

    /// Runs what is there now. Jobs that come meanwhile wait for the next turn, so that sockets get theirs.
    void runJobs() {
        {
            std::lock_guard lock(mutex_);
            running_.swap(jobs_);
        }
        for (Job& job : running_) {
            job();
            job = nullptr;
            if (context->stopped()) {
                break;
            }
        }
        running_.clear();
    }

    void armTimer() {
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

    void runDelayed() {
        const auto now = Clock::now();
        while (!context->stopped()) {
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

    void endResidents() {
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
    void dropJobs() {
        std::vector<Job> jobs;
        std::multimap<Clock::time_point, Job> delayed;
        const std::lock_guard lock(mutex_);
        jobs.swap(jobs_);
        delayed.swap(delayed_);
    }

    std::mutex mutex_;
    std::vector<Job> jobs_;
    /// Equal times keep the order in which they were handed over.
    std::multimap<Clock::time_point, Job> delayed_;
    bool isEnded_ = false;
    std::set<AsioResident*> residents_;

    std::vector<Job> running_;
    std::optional<net::executor_work_guard<net::io_context::executor_type>> guard_{
        net::make_work_guard(*context)};
    std::optional<net::steady_timer> timer_{*context};
    std::promise<void> hasReturned_;
    std::future<void> returned_ = hasReturned_.get_future();
    std::thread thread_;
};

AsioQueue::AsioQueue(const std::string& name) : loop_(std::make_unique<Loop>(name)) {}

AsioQueue::~AsioQueue() = default;

bool AsioQueue::end(std::chrono::milliseconds limit) {
    return loop_->end(limit);
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

net::io_context& AsioQueueAccess::context(AsioQueue& queue) {
    return *queue.loop_->context;
}

void AsioQueueAccess::add(AsioQueue& queue, AsioResident& resident) {
    queue.loop_->add(resident);
}

void AsioQueueAccess::remove(AsioQueue& queue, AsioResident& resident) {
    queue.loop_->remove(resident);
}

} // namespace velloway
