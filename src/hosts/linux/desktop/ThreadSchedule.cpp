#include "hosts/linux/desktop/ThreadSchedule.h"

#include <cstdint>

#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace velloway {

namespace {

/// What the system takes and gives as the attributes of a thread; the C library has no name for it.
struct Attributes {
    std::uint32_t size;
    std::uint32_t policy;
    std::uint64_t flags;
    std::int32_t nice;
    std::uint32_t priority;
    std::uint64_t runtime;
    std::uint64_t deadline;
    std::uint64_t period;
};

constexpr std::uint64_t notInherited = 1;
/// Several times shorter than what the system gives by itself, and longer than handling a few messages takes.
constexpr std::uint64_t shortTurnNanoseconds = 200'000;
constexpr int politeness = 10;

} // namespace

void takeShortTurns() {
    Attributes attributes{};
    if (::syscall(SYS_sched_getattr, 0, &attributes, sizeof attributes, 0) != 0 ||
        attributes.policy != SCHED_OTHER) {
        return;
    }
    attributes.size = sizeof attributes;
    attributes.flags |= notInherited;
    attributes.runtime = shortTurnNanoseconds;
    static_cast<void>(::syscall(SYS_sched_setattr, 0, &attributes, 0));
}

void letOthersGoFirst() {
    // 0 is the calling thread, not the process.
    static_cast<void>(::setpriority(PRIO_PROCESS, 0, ::getpriority(PRIO_PROCESS, 0) + politeness));
}

} // namespace velloway
