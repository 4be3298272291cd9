#include "platform/Fatal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>

namespace velloway::test {
namespace {

using testing::Eq;
using testing::KilledBySignal;

TEST(FatalDeathTest, EndsTheProcessWithItsMessageAsOneLine) {
    EXPECT_EXIT(fatal("no folder"), KilledBySignal(SIGABRT), Eq("Fatal error: no folder\n"));
}

TEST(FatalDeathTest, LosesNothingThatStandardErrorHoldsBack) {
    const auto dieBuffered = [] {
        std::setvbuf(stderr, nullptr, _IOFBF, BUFSIZ);
        fatal("no folder");
    };
    EXPECT_EXIT(dieBuffered(), KilledBySignal(SIGABRT), Eq("Fatal error: no folder\n"));
}

TEST(FatalDeathTest, RunsTheLastActionBeforeTheMessage) {
    const auto dieAfter = [](auto... actions) {
        (setBeforeFatal(actions), ...);
        fatal("no folder");
    };
    constexpr auto first = [] { std::fputs("first\n", stderr); };
    constexpr auto second = [] { std::fputs("second\n", stderr); };
    EXPECT_EXIT(dieAfter(first, second), KilledBySignal(SIGABRT), Eq("second\nFatal error: no folder\n"));
    EXPECT_EXIT(dieAfter(first, nullptr), KilledBySignal(SIGABRT), Eq("Fatal error: no folder\n"));
}

} // namespace
} // namespace velloway::test
