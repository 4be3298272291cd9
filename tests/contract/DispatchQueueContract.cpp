#include "desktop/WaitFor.h"
#include "fakes/FakeDispatchQueue.h"
#include "hosts/qt/QtMainQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace velloway::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

/// One implementation, and what makes its time pass.
class Driver {
public:
    virtual ~Driver() = default;
    virtual DispatchQueue& queue() = 0;
    virtual bool runUntil(const std::function<bool()>& condition) = 0;
};

class FakeDriver : public Driver {
public:
    DispatchQueue& queue() override { return queue_; }
    bool runUntil(const std::function<bool()>& condition) override {
        for (int step = 0; step < 1000 && !condition(); ++step) {
            queue_.runAll();
            queue_.advance(1ms);
        }
        return condition();
    }

private:
    FakeDispatchQueue queue_;
};

class QtDriver : public Driver {
public:
    DispatchQueue& queue() override { return queue_; }
    bool runUntil(const std::function<bool()>& condition) override { return waitFor(condition); }

private:
    QtMainQueue queue_;
};

template <class Made> std::unique_ptr<Driver> make() {
    return std::make_unique<Made>();
}

struct Implementation {
    const char* name;
    std::unique_ptr<Driver> (*make)();
};

class DispatchQueueContract : public testing::TestWithParam<Implementation> {
protected:
    void note(std::string what) { notes.push_back(std::move(what)); }

    std::unique_ptr<Driver> driver = GetParam().make();
    DispatchQueue& queue = driver->queue();
    std::vector<std::string> notes;
};

TEST_P(DispatchQueueContract, RunsJobsInTheOrderInWhichTheyWereHandedOver) {
    std::vector<int> order;
    for (int job = 0; job < 1000; ++job) {
        queue.async([&order, job] { order.push_back(job); });
    }
    ASSERT_TRUE(driver->runUntil([&] { return order.size() == 1000; }));
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST_P(DispatchQueueContract, NeverRunsAJobInsideTheCallThatHandsItOver) {
    queue.async([&] {
        queue.async([&] { note("inner"); });
        note("outer");
    });
    EXPECT_TRUE(notes.empty());
    ASSERT_TRUE(driver->runUntil([&] { return notes.size() == 2; }));
    EXPECT_THAT(notes, ElementsAre("outer", "inner"));
}

TEST_P(DispatchQueueContract, DelayedJobsRunInTheOrderOfTheirTimesAndThenOfTheCalls) {
    queue.asyncAfter(30ms, [&] { note("30 first"); });
    queue.asyncAfter(10ms, [&] { note("10"); });
    queue.asyncAfter(30ms, [&] { note("30 second"); });
    queue.async([&] { note("at once"); });
    ASSERT_TRUE(driver->runUntil([&] { return notes.size() == 4; }));
    EXPECT_THAT(notes, ElementsAre("at once", "10", "30 first", "30 second"));
}

TEST_P(DispatchQueueContract, IsCurrentInsideAJob) {
    bool wasCurrent = false;
    queue.async([&] {
        wasCurrent = queue.isCurrent();
        note("ran");
    });
    ASSERT_TRUE(driver->runUntil([&] { return !notes.empty(); }));
    EXPECT_TRUE(wasCurrent);
}

TEST_P(DispatchQueueContract, LetsGoOfWhatAJobHoldsOnceItHasRun) {
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watch = held;
    queue.async([held = std::move(held)] {});
    EXPECT_FALSE(watch.expired());
    EXPECT_TRUE(driver->runUntil([&] { return watch.expired(); }));
}

INSTANTIATE_TEST_SUITE_P(, DispatchQueueContract,
                         testing::Values(Implementation{"Fake", make<FakeDriver>},
                                         Implementation{"Qt", make<QtDriver>}),
                         [](const auto& it) { return std::string(it.param.name); });

TEST(QtMainQueueTest, TakesJobsFromOtherThreadsAndKeepsTheOrderOfEach) {
    QtMainQueue queue;
    constexpr int perThread = 20'000;
    std::vector<int> seen[2];
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 2; ++thread) {
        threads.emplace_back([&, thread] {
            for (int job = 0; job < perThread; ++job) {
                queue.async([&, thread, job] { seen[thread].push_back(job); });
            }
        });
    }
    EXPECT_TRUE(waitFor([&] { return seen[0].size() + seen[1].size() == 2 * perThread; }));
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const std::vector<int>& order : seen) {
        EXPECT_EQ(order.size(), perThread);
        EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    }
}

TEST(QtMainQueueTest, IsCurrentOnTheMainThreadOnly) {
    QtMainQueue queue;
    EXPECT_TRUE(queue.isCurrent());
    bool onOtherThread = true;
    std::thread([&] { onOtherThread = queue.isCurrent(); }).join();
    EXPECT_FALSE(onOtherThread);
}

TEST(QtMainQueueTest, JobsWaitingBehindOneThatEntersANestedLoopRunInsideIt) {
    QtMainQueue queue;
    std::vector<std::string> notes;
    QEventLoop nested;
    queue.async([&] {
        notes.emplace_back("modal begins");
        nested.exec();
        notes.emplace_back("modal ends");
    });
    queue.async([&] { notes.emplace_back("waiting"); });
    queue.async([&] {
        queue.async([&] { notes.emplace_back("handed over inside"); });
        queue.asyncAfter(1ms, [&] {
            notes.emplace_back("delayed");
            nested.quit();
        });
    });
    ASSERT_TRUE(waitFor([&] { return !notes.empty() && notes.back() == "modal ends"; }));
    EXPECT_THAT(notes, ElementsAre("modal begins", "waiting", "handed over inside", "delayed", "modal ends"));
}

TEST(QtMainQueueTest, AFloodOfJobsDoesNotLockOutTimers) {
    QtMainQueue queue;
    std::atomic<bool> goOn = true;
    std::atomic<int> ran = 0;
    // Each job hands over the next two, so that the queue never runs dry by itself.
    std::function<void()> multiply = [&] {
        ++ran;
        if (goOn) {
            queue.async(multiply);
            if (ran < 5000) {
                queue.async(multiply);
            }
        }
    };
    bool timerFired = false;
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] { timerFired = true; });
    timer.start(20);
    queue.async(multiply);
    EXPECT_TRUE(waitFor([&] { return timerFired && ran > 5000; }));
    goOn = false;
    timer.stop();
}

TEST(QtMainQueueTest, ADelayedJobComesNeitherEarlyNorMuchLate) {
    QtMainQueue queue;
    bool done = false;
    qint64 elapsed = 0;
    QElapsedTimer clock;
    clock.start();
    queue.asyncAfter(60ms, [&] {
        elapsed = clock.nsecsElapsed();
        done = true;
    });
    ASSERT_TRUE(waitFor([&] { return done; }));
    EXPECT_GE(elapsed, 60'000'000);
    EXPECT_LT(elapsed, 560'000'000);
}

TEST(QtMainQueueTest, AnEarlierDelayAskedForLaterIsNotHeldUpByALongOne) {
    QtMainQueue queue;
    bool early = false;
    queue.asyncAfter(1h, [] { FAIL() << "the long delay ran"; });
    processPending();
    std::thread([&] { queue.asyncAfter(5ms, [&] { early = true; }); }).join();
    EXPECT_TRUE(waitFor([&] { return early; }, 5s));
}

TEST(QtMainQueueTest, GatheredJobsWaitForTheFlushAndKeepTheirOrderAmongOthers) {
    QtMainQueue queue;
    std::vector<std::string> notes;
    const auto note = [&](const char* text) { return [&notes, text] { notes.emplace_back(text); }; };
    std::thread([&] {
        QtMainQueue::gatherOnThisThread();
        queue.async(note("one"));
    }).join();
    processPending();
    EXPECT_TRUE(notes.empty());
    queue.flush();
    EXPECT_TRUE(waitFor([&] { return notes.size() == 1; }));

    std::thread([&] {
        QtMainQueue::gatherOnThisThread();
        queue.async(note("two"));
        std::thread([&] { queue.async(note("three")); }).join();
        queue.async(note("four"));
        queue.flush();
    }).join();
    EXPECT_TRUE(waitFor([&] { return notes.size() == 4; }));
    EXPECT_THAT(notes, ElementsAre("one", "two", "three", "four"));
}

TEST(QtMainQueueTest, JobsOfATurnThatTakesLongRunMeanwhile) {
    QtMainQueue queue;
    std::atomic<int> ran = 0;
    std::atomic<bool> isOver = false;
    std::thread turn([&] {
        QtMainQueue::gatherOnThisThread();
        while (!isOver) {
            queue.async([&] { ++ran; });
            std::this_thread::sleep_for(5ms);
        }
    });
    EXPECT_TRUE(waitFor([&] { return ran > 2; }));
    isOver = true;
    turn.join();
}

TEST(QtMainQueueTest, JobsLeftAtTheEndAreDroppedWithWhatTheyHold) {
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watch = held;
    {
        QtMainQueue queue;
        queue.async([held] { FAIL() << "ran after the end"; });
        queue.asyncAfter(0ms, [held = std::move(held)] { FAIL() << "ran after the end"; });
    }
    EXPECT_TRUE(watch.expired());
    processPending();
}

} // namespace
} // namespace velloway::test
