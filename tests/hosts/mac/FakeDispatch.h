#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace velloway::test::fakeDispatch {

/// Runs what waits on any queue, and what that adds.
void runAll();
/// Lets time pass, in the order in which jobs fall due.
void advance(std::chrono::nanoseconds time);

/// Puts a job of the system itself on a queue.
void post(void* queue, std::function<void()> job);

struct QueueFacts {
    std::string label;
    unsigned qualityOfService = 0;
    int relativePriority = 0;
};
QueueFacts factsOf(void* queue);

} // namespace velloway::test::fakeDispatch
