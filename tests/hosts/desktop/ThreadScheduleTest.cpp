#include "hosts/linux/desktop/ThreadSchedule.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <thread>

namespace velloway {
namespace {

void onThread(const std::function<void()>& step) {
    std::thread(step).join();
}

/// In nanoseconds; 0 on a system that knows of no turns of one thread.
std::uint64_t turn() {
    std::array<char, 48> attributes{};
    EXPECT_EQ(::syscall(SYS_sched_getattr, 0, attributes.data(), attributes.size(), 0), 0);
    std::uint64_t runtime = 0;
    std::memcpy(&runtime, attributes.data() + 24, sizeof runtime);
    return runtime;
}

int niceness() {
    return ::getpriority(PRIO_PROCESS, 0);
}

TEST(ThreadScheduleTest, ShortTurnsAreThoseOfOneThreadAndNotInherited) {
    const std::uint64_t usual = turn();
    if (usual == 0) {
        GTEST_SKIP() << "this system gives no thread turns of its own";
    }
    onThread([&] {
        const int before = niceness();
        takeShortTurns();
        EXPECT_LT(turn(), usual);
        EXPECT_EQ(niceness(), before);
        onThread([&] { EXPECT_EQ(turn(), usual); });
    });
    EXPECT_EQ(turn(), usual);
}

TEST(ThreadScheduleTest, OneThreadLetsOthersGoFirst) {
    const int usual = niceness();
    onThread([&] {
        letOthersGoFirst();
        EXPECT_GT(niceness(), usual);
    });
    EXPECT_EQ(niceness(), usual);
}

} // namespace
} // namespace velloway
