#include "hosts/linux/network/AsioQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <future>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace velloway::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

/// Runs `act` on the queue and hands its result back.
template <class Act> auto on(DispatchQueue& queue, Act act) {
    std::promise<decltype(act())> promise;
    auto future = promise.get_future();
    queue.async([&] { promise.set_value(act()); });
    EXPECT_EQ(future.wait_for(10s), std::future_status::ready);
    return future.get();
}

TEST(AsioQueueTest, RunsTheJobsOfEachThreadInTheOrderInWhichTheyWereHandedOver) {
    constexpr int perThread = 20'000;
    std::vector<int> seen[2];
    AsioQueue queue("ws.server");
    std::vector<std::thread> threads;
    for (auto& order : seen) {
        threads.emplace_back([&queue, &order] {
            for (int job = 0; job < perThread; ++job) {
                queue.async([&order, job] { order.push_back(job); });
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    on(queue, [] { return true; });
    for (const auto& order : seen) {
        EXPECT_EQ(order.size(), perThread);
        EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    }
}

TEST(AsioQueueTest, NeverRunsAJobInsideTheCallThatHandsItOver) {
    AsioQueue queue("ws.server");
    std::vector<std::string> notes;
    std::promise<void> done;
    queue.async([&] {
        queue.async([&] {
            notes.emplace_back("inner");
            done.set_value();
        });
        notes.emplace_back("outer");
    });
    ASSERT_EQ(done.get_future().wait_for(10s), std::future_status::ready);
    EXPECT_THAT(notes, ElementsAre("outer", "inner"));
}

TEST(AsioQueueTest, DelayedJobsRunInTheOrderOfTheirTimesAndThenOfTheCalls) {
    AsioQueue queue("ws.server");
    std::vector<std::string> notes;
    std::promise<void> done;
    queue.async([&] {
        queue.asyncAfter(30ms, [&] { notes.emplace_back("30 first"); });
        queue.asyncAfter(10ms, [&] { notes.emplace_back("10"); });
        queue.asyncAfter(30ms, [&] {
            notes.emplace_back("30 second");
            done.set_value();
        });
    });
    ASSERT_EQ(done.get_future().wait_for(10s), std::future_status::ready);
    EXPECT_THAT(notes, ElementsAre("10", "30 first", "30 second"));
}

TEST(AsioQueueTest, ADelayedJobComesNoEarlierThanAsked) {
    AsioQueue queue("ws.server");
    std::promise<std::chrono::steady_clock::time_point> ran;
    const auto start = std::chrono::steady_clock::now();
    queue.asyncAfter(50ms, [&] { ran.set_value(std::chrono::steady_clock::now()); });
    EXPECT_GE(ran.get_future().get() - start, 50ms);
}

TEST(AsioQueueTest, AShortDelayAskedForAfterALongOneIsNotHeldUp) {
    AsioQueue queue("ws.server");
    std::promise<void> done;
    queue.asyncAfter(1h, [] { FAIL() << "the long delay ran"; });
    on(queue, [] { return true; });
    queue.asyncAfter(5ms, [&] { done.set_value(); });
    EXPECT_EQ(done.get_future().wait_for(5s), std::future_status::ready);
}

TEST(AsioQueueTest, IsCurrentInItsOwnJobsOnly) {
    AsioQueue queue("ws.server");
    AsioQueue other("other");
    EXPECT_FALSE(queue.isCurrent());
    EXPECT_TRUE(on(queue, [&] { return queue.isCurrent(); }));
    EXPECT_FALSE(on(other, [&] { return queue.isCurrent(); }));
}

TEST(AsioQueueTest, ItsThreadHasTheGivenNameAndThePriorityOfTheOthers) {
    AsioQueue queue("ws.server");
    EXPECT_EQ(on(queue,
                 [] {
                     char name[16] = {};
                     pthread_getname_np(pthread_self(), name, sizeof name);
                     return std::string(name);
                 }),
              "ws.server");
    const int ours = getpriority(PRIO_PROCESS, 0);
    EXPECT_EQ(on(queue, [] { return getpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid))); }),
              ours);
}

TEST(AsioQueueTest, ATurnEndsOnceForJobsThatWereHandedOverTogether) {
    std::vector<std::string> notes;
    std::promise<void> done;
    {
        AsioQueue queue("ws.server", {.began = [&] { notes.emplace_back("began"); },
                                      .ended =
                                          [&] {
                                              notes.emplace_back("ended");
                                              if (notes.size() == 6) {
                                                  done.set_value();
                                              }
                                          }});
        queue.async([&] {
            for (const char* name : {"one", "two", "three"}) {
                queue.async([&notes, name] { notes.emplace_back(name); });
            }
        });
        EXPECT_EQ(done.get_future().wait_for(10s), std::future_status::ready);
    }
    EXPECT_THAT(notes, ElementsAre("began", "ended", "one", "two", "three", "ended"));
}

TEST(AsioQueueTest, LetsGoOfWhatAJobHoldsOnceItHasRun) {
    AsioQueue queue("ws.server");
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watch = held;
    queue.async([held = std::move(held)] {});
    on(queue, [] { return true; });
    EXPECT_TRUE(on(queue, [&] { return watch.expired(); }));
}

TEST(AsioQueueTest, AtTheEndTheRunningJobIsFinishedAndWaitingOnesAreDropped) {
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watch = held;
    std::promise<void> started;
    std::atomic<bool> goOn = false;
    bool isFinished = false;
    std::thread release;
    {
        AsioQueue queue("ws.server");
        queue.async([&] {
            started.set_value();
            while (!goOn) {
                std::this_thread::yield();
            }
            isFinished = true;
        });
        started.get_future().wait();
        queue.async([held] { FAIL() << "ran after the end"; });
        queue.asyncAfter(0ms, [held = std::move(held)] { FAIL() << "ran after the end"; });
        // The end has begun, or is about to, when the running job may go on.
        release = std::thread([&] {
            std::this_thread::sleep_for(50ms);
            goOn = true;
        });
    }
    release.join();
    EXPECT_TRUE(isFinished);
    EXPECT_TRUE(watch.expired());
}

TEST(AsioQueueTest, EndReturnsFalseWhileAJobRunsThatTakesLongerThanTheLimit) {
    AsioQueue queue("ws.server");
    std::promise<void> started;
    std::promise<void> goOn;
    queue.async([&] {
        started.set_value();
        goOn.get_future().wait();
    });
    started.get_future().wait();
    EXPECT_FALSE(queue.end(10ms));
    goOn.set_value();
    EXPECT_TRUE(queue.end(10s));
    EXPECT_TRUE(queue.end(0ms));
}

TEST(AsioQueueTest, FinishRunsTheJobsThatWaitBeforeTheEnd) {
    AsioQueue queue("ws.files");
    std::atomic<int> ran = 0;
    for (int job = 0; job < 5; ++job) {
        queue.async([&] {
            std::this_thread::sleep_for(10ms);
            ++ran;
        });
    }
    EXPECT_TRUE(queue.finish(10s));
    EXPECT_EQ(ran, 5);
    queue.async([] { FAIL() << "ran after the end"; });
    EXPECT_TRUE(queue.finish(0ms));
}

TEST(AsioQueueTest, FinishReturnsFalseWhenTheJobsTakeLongerThanTheLimitAndDropsTheOthers) {
    AsioQueue queue("ws.files");
    std::promise<void> started;
    std::promise<void> goOn;
    queue.async([&] {
        started.set_value();
        goOn.get_future().wait();
    });
    queue.async([] { FAIL() << "ran after the end"; });
    started.get_future().wait();
    EXPECT_FALSE(queue.finish(10ms));
    goOn.set_value();
    EXPECT_TRUE(queue.end(10s));
}

TEST(AsioQueueTest, AJobHandedOverAfterTheEndIsDestroyedAtOnce) {
    AsioQueue queue("ws.server");
    ASSERT_TRUE(queue.end(10s));
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watch = held;
    queue.async([held] { FAIL() << "ran after the end"; });
    queue.asyncAfter(0ms, [held = std::move(held)] { FAIL() << "ran after the end"; });
    EXPECT_TRUE(watch.expired());
    EXPECT_FALSE(queue.isCurrent());
}

TEST(AsioQueueTest, OthersMayHandOverJobsWhileItEnds) {
    for (int round = 0; round < 100; ++round) {
        AsioQueue queue("ws.server");
        std::atomic<bool> isEnded = false;
        std::atomic<int> handedOver = 0;
        std::thread other([&] {
            while (!isEnded) {
                queue.async([] {});
                queue.asyncAfter(std::chrono::nanoseconds(0), [] {});
                ++handedOver;
            }
        });
        while (handedOver == 0) {
            std::this_thread::yield();
        }
        EXPECT_TRUE(queue.end(std::chrono::seconds(10)));
        isEnded = true;
        other.join();
    }
}

TEST(AsioQueueTest, WhatADroppedJobHeldMayHandOverJobsAsItGoes) {
    struct Parting {
        DispatchQueue& queue;
        std::shared_ptr<int> held;
        ~Parting() {
            queue.async([kept = held] { FAIL() << "ran after the end"; });
        }
    };
    auto held = std::make_shared<int>(1);
    const std::weak_ptr<int> watch = held;
    {
        AsioQueue queue("ws.server");
        // Made in place: a copy would hand over its job while the queue still runs.
        const std::shared_ptr<Parting> parting(new Parting{queue, std::move(held)});
        queue.asyncAfter(1h, [parting] {});
    }
    EXPECT_TRUE(watch.expired());
}

TEST(AsioQueueTest, OfALongNameTheThreadHasTheBeginning) {
    AsioQueue queue("a name of twenty-five ch.");
    EXPECT_EQ(on(queue,
                 [] {
                     char name[16] = {};
                     pthread_getname_np(pthread_self(), name, sizeof name);
                     return std::string(name);
                 }),
              "a name of twent");
}

TEST(AsioQueueTest, DelayedJobsThatFallDueTogetherAllRunInOneGo) {
    AsioQueue queue("ws.server");
    std::vector<int> order;
    std::promise<void> done;
    queue.async([&] {
        for (const int number : {3, 1, 2}) {
            queue.asyncAfter(std::chrono::milliseconds(number), [&order, number] { order.push_back(number); });
        }
        queue.asyncAfter(20ms, [&] { done.set_value(); });
        std::this_thread::sleep_for(10ms);
    });
    ASSERT_EQ(done.get_future().wait_for(10s), std::future_status::ready);
    EXPECT_THAT(order, ElementsAre(1, 2, 3));
}

TEST(AsioQueueTest, FinishWaitsNoLongerThanItsLimitAltogether) {
    AsioQueue queue("ws.files");
    std::promise<void> started;
    std::promise<void> goOn;
    queue.async([&] {
        started.set_value();
        goOn.get_future().wait();
    });
    started.get_future().wait();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(queue.finish(100ms));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 100ms);
    goOn.set_value();
    EXPECT_TRUE(queue.end(10s));
}

TEST(AsioQueueTest, AJobThatEndsTheQueueFromAnotherThreadIsTheLastOfItsTurn) {
    AsioQueue queue("ws.server");
    std::promise<void> started;
    std::promise<void> goOn;
    queue.async([&] {
        queue.async([&] {
            started.set_value();
            goOn.get_future().wait();
        });
        queue.async([] { FAIL() << "ran after the end"; });
        queue.asyncAfter(0ms, [] { FAIL() << "ran after the end"; });
    });
    started.get_future().wait();
    EXPECT_FALSE(queue.end(0ms));
    goOn.set_value();
    EXPECT_TRUE(queue.end(10s));
}

} // namespace
} // namespace velloway::test
