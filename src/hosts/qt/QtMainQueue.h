#pragma once

#include "platform/DispatchQueue.h"

#include <QBasicTimer>
#include <QObject>

#include <cstdint>
#include <deque>
#include <mutex>
#include <vector>

namespace velloway {

/// The main queue on Qt's event loop. Made on the main thread after the QCoreApplication and gone before it.
///
/// Jobs go on running in a nested event loop, also those that were waiting behind the job that entered it. A
/// flood of jobs doesn't lock out input and painting. Jobs left at the end are destroyed without being run.
class QtMainQueue : public QObject, public DispatchQueue {
public:
    /// Runs one job and destroys it.
    using Runner = void (*)(Job& job);

    /// `run` may do what the host needs before and after each job.
    explicit QtMainQueue(Runner run = runAndDestroy);
    ~QtMainQueue() override;

    /// Destroys the jobs that wait, and from now on every job that is handed over. Main thread.
    void end();

    /// From now on a job that this thread hands over waits for `flush`, or a few milliseconds, so that a thread
    /// with an event loop of its own wakes the main thread once for all jobs of a turn. The order of the jobs
    /// stays as it is.
    static void gatherOnThisThread();
    /// Wakes the main thread if a gathered job waits. Any thread.
    void flush();

    void async(Job job) override;
    void asyncAfter(std::chrono::nanoseconds delay, Job job) override;
    /// True on the whole main thread: what the toolkit calls there counts as a job of this queue.
    bool isCurrent() const override;

protected:
    bool event(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    using Clock = std::chrono::steady_clock;

    struct Delayed {
        Clock::time_point due;
        std::uint64_t order;
        Job job;
    };
    struct LaterFirst {
        bool operator()(const Delayed& a, const Delayed& b) const {
            return a.due != b.due ? a.due > b.due : a.order > b.order;
        }
    };

    static void runAndDestroy(Job& job);
    bool add(Job job);
    // There is one wake-up event at a time. Claiming and `wake`, which does both, expect the lock.
    bool claimWake();
    void postWake();
    void wake();
    void takeTurn();
    void runJobs();
    void takeDue();
    void armTimer();

    const Runner run_;
    std::mutex mutex_;
    std::deque<Job> jobs_;
    /// A heap; the job that falls due first is at the front.
    std::vector<Delayed> delayed_;
    std::uint64_t nextOrder_ = 0;
    bool isEnded_ = false;
    bool isWakePosted_ = false;
    /// A gathered job waits for `flush`.
    bool isWakeOwed_ = false;
    Clock::time_point owedSince_;
    bool isRearmWanted_ = false;

    QBasicTimer dueTimer_;
    QBasicTimer breathTimer_;
};

} // namespace velloway
