#include "hosts/qt/QtMainQueue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThread>
#include <QTimerEvent>

#include <algorithm>

namespace velloway {

namespace {

const QEvent::Type wakeType = static_cast<QEvent::Type>(QEvent::registerEventType());

/// How long jobs may run on end before input and painting get their turn.
constexpr std::chrono::milliseconds longestRun{8};

/// A job of the other thread that takes longer than this, such as one that reads a file, shows its progress.
constexpr std::chrono::milliseconds longestGathering{2};

thread_local bool isGathering = false;

} // namespace

QtMainQueue::QtMainQueue(Runner run) : run_(run) {}

QtMainQueue::~QtMainQueue() {
    end();
}

void QtMainQueue::end() {
    // Destroyed without the lock: what the jobs hold may hand over new jobs as it goes.
    std::deque<Job> jobs;
    std::vector<Delayed> delayed;
    const std::lock_guard lock(mutex_);
    isEnded_ = true;
    jobs.swap(jobs_);
    delayed.swap(delayed_);
}

// Others wake the main thread after they have let go of the lock: it may run at once, on the processor of the
// one that woke it, and would have to wait for the lock.

void QtMainQueue::async(Job job) {
    if (add(std::move(job))) {
        postWake();
    }
}

/// Returns whether the main thread has to be woken.
bool QtMainQueue::add(Job job) {
    const std::lock_guard lock(mutex_);
    if (isEnded_) {
        return false;
    }
    jobs_.push_back(std::move(job));
    if (!isGathering) {
        return claimWake();
    }
    if (!std::exchange(isWakeOwed_, true)) {
        owedSince_ = Clock::now();
    } else if (Clock::now() - owedSince_ > longestGathering) {
        isWakeOwed_ = false;
        return claimWake();
    }
    return false;
}

void QtMainQueue::gatherOnThisThread() {
    isGathering = true;
}

void QtMainQueue::flush() {
    bool isToWake = false;
    {
        const std::lock_guard lock(mutex_);
        isToWake = std::exchange(isWakeOwed_, false) && !jobs_.empty() && claimWake();
    }
    if (isToWake) {
        postWake();
    }
}

void QtMainQueue::asyncAfter(std::chrono::nanoseconds delay, Job job) {
    const std::lock_guard lock(mutex_);
    if (isEnded_) {
        return;
    }
    const Clock::time_point due = Clock::now() + std::max(delay, std::chrono::nanoseconds::zero());
    delayed_.push_back({due, nextOrder_++, std::move(job)});
    std::push_heap(delayed_.begin(), delayed_.end(), LaterFirst{});
    isRearmWanted_ = true;
    wake();
}

bool QtMainQueue::isCurrent() const {
    return QThread::currentThread() == thread();
}

bool QtMainQueue::claimWake() {
    return !std::exchange(isWakePosted_, true);
}

void QtMainQueue::postWake() {
    QCoreApplication::postEvent(this, new QEvent(wakeType));
}

void QtMainQueue::wake() {
    if (claimWake()) {
        postWake();
    }
}

bool QtMainQueue::event(QEvent* event) {
    if (event->type() != wakeType) {
        return QObject::event(event);
    }
    // After a long run the breath timer stands in for the event.
    if (!breathTimer_.isActive()) {
        takeTurn();
    }
    return true;
}

void QtMainQueue::timerEvent(QTimerEvent* event) {
    if (event->timerId() == dueTimer_.timerId()) {
        dueTimer_.stop();
        takeDue();
        armTimer();
    } else if (event->timerId() == breathTimer_.timerId()) {
        breathTimer_.stop();
        takeTurn();
    }
}

void QtMainQueue::takeTurn() {
    bool isRearmWanted = false;
    {
        const std::lock_guard lock(mutex_);
        isWakePosted_ = false;
        isRearmWanted = std::exchange(isRearmWanted_, false);
    }
    if (isRearmWanted) {
        armTimer();
    }
    runJobs();
}

void QtMainQueue::runJobs() {
    const Clock::time_point start = Clock::now();
    while (true) {
        Job job;
        {
            const std::lock_guard lock(mutex_);
            if (jobs_.empty()) {
                return;
            }
            if (Clock::now() - start > longestRun) {
                // Such a timer fires only when nothing else waits. No event may be posted meanwhile: under a
                // flood there would always be one, and the timer would never get its turn.
                isWakePosted_ = true;
                breathTimer_.start(0, this);
                return;
            }
            job = std::move(jobs_.front());
            jobs_.pop_front();
            // Should the job enter a nested event loop, this event is what runs the rest there.
            if (!jobs_.empty()) {
                wake();
            }
        }
        run_(job);
    }
}

void QtMainQueue::runAndDestroy(Job& job) {
    job();
    job = nullptr;
}

void QtMainQueue::takeDue() {
    const std::lock_guard lock(mutex_);
    const Clock::time_point now = Clock::now();
    while (!delayed_.empty() && delayed_.front().due <= now) {
        std::pop_heap(delayed_.begin(), delayed_.end(), LaterFirst{});
        jobs_.push_back(std::move(delayed_.back().job));
        delayed_.pop_back();
    }
    if (!jobs_.empty()) {
        wake();
    }
}

void QtMainQueue::armTimer() {
    std::chrono::milliseconds wait{0};
    {
        const std::lock_guard lock(mutex_);
        if (delayed_.empty()) {
            dueTimer_.stop();
            return;
        }
        const auto left = delayed_.front().due - Clock::now();
        wait = std::clamp(std::chrono::ceil<std::chrono::milliseconds>(left), std::chrono::milliseconds(0),
                          std::chrono::milliseconds(std::chrono::hours(1)));
    }
    dueTimer_.start(static_cast<int>(wait.count()), Qt::PreciseTimer, this);
}

} // namespace velloway
