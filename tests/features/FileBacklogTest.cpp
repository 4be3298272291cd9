#include "features/FileBacklog.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace velloway::test {
namespace {

TEST(FileBacklog, IsEmptyOnceEveryJobIsFinished) {
    FileBacklog backlog;
    EXPECT_TRUE(backlog.isEmpty());
    backlog.add(1);
    backlog.add(0);
    EXPECT_FALSE(backlog.isEmpty());
    backlog.remove(1);
    EXPECT_FALSE(backlog.isEmpty()) << "a job without a byte is a job";
    backlog.remove(0);
    EXPECT_TRUE(backlog.isEmpty());
}

TEST(FileBacklog, IsFullFromItsBoundOn) {
    FileBacklog backlog;
    backlog.add(FileBacklog::mostBytes - 1);
    EXPECT_FALSE(backlog.isFull());
    backlog.add(1);
    EXPECT_TRUE(backlog.isFull());
    backlog.add(1);
    EXPECT_TRUE(backlog.isFull());
    backlog.remove(1);
    EXPECT_TRUE(backlog.isFull());
    backlog.remove(1);
    EXPECT_FALSE(backlog.isFull());
}

TEST(FileBacklog, ReportsEachFinishedJobAfterItIsTakenOff) {
    FileBacklog backlog;
    using State = std::pair<bool, bool>; // empty, full
    std::vector<State> states;
    backlog.add(FileBacklog::mostBytes);
    backlog.add(1);
    backlog.add(1);
    backlog.remove(1); // Nobody listens yet.
    backlog.setOnLess([&] { states.emplace_back(backlog.isEmpty(), backlog.isFull()); });
    backlog.remove(FileBacklog::mostBytes);
    backlog.remove(1);
    EXPECT_EQ(states, (std::vector<State>{{false, false}, {true, false}}));
}

} // namespace
} // namespace velloway::test
