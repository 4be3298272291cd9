#include "hosts/mac/FakeDispatch.h"

#include "hosts/mac/FakeDispatchData.h"
#include "hosts/mac/FakeObject.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <map>
#include <utility>
#include <vector>

// The fake defines the platform's C functions itself, with untyped handles; the adapters see the real types.

namespace velloway::test {

namespace {

struct Attributes {
    unsigned qualityOfService = 0;
    int relativePriority = 0;
};

class FakeQueue : public FakeObject {
public:
    fakeDispatch::QueueFacts facts;
    std::map<const void*, void*> specifics;
};

struct Job {
    FakeQueue* queue;
    std::function<void()> work;
};

struct Delayed {
    std::uint64_t due;
    Job job;
};

std::deque<Job> waiting;
std::vector<Delayed> delayed;
std::uint64_t present = 0;
FakeQueue* running = nullptr;

} // namespace

void fakeDispatch::runAll() {
    while (!waiting.empty()) {
        Job job = std::move(waiting.front());
        waiting.pop_front();
        FakeQueue* const before = std::exchange(running, job.queue);
        job.work();
        job.work = nullptr;
        running = before;
        job.queue->release();
    }
}

void fakeDispatch::advance(std::chrono::nanoseconds time) {
    const std::uint64_t end = present + static_cast<std::uint64_t>(time.count());
    while (true) {
        const auto next = std::min_element(delayed.begin(), delayed.end(),
                                           [](const auto& a, const auto& b) { return a.due < b.due; });
        if (next == delayed.end() || next->due > end) {
            break;
        }
        present = std::max(present, next->due);
        waiting.push_back(std::move(next->job));
        delayed.erase(next);
        runAll();
    }
    present = end;
}

void fakeDispatch::post(void* queue, std::function<void()> job) {
    auto* const target = static_cast<FakeQueue*>(queue);
    target->retain();
    waiting.push_back({target, std::move(job)});
}

fakeDispatch::QueueFacts fakeDispatch::factsOf(void* queue) {
    return static_cast<FakeQueue*>(queue)->facts;
}

FakeData::FakeData(std::vector<std::string> regions) : regions_(std::move(regions)) {}

FakeData::FakeData(std::string_view inPlace, void (^destructor)(void))
    : inPlace_(inPlace), destructor_(destructor) {}

FakeData::~FakeData() {
    if (destructor_) {
        destructor_();
    }
}

std::string FakeData::bytes() const {
    std::string all(inPlace_);
    for (const std::string& region : regions_) {
        all += region;
    }
    return all;
}

extern "C" {

void* dispatch_queue_attr_make_with_qos_class(void*, unsigned qosClass, int relativePriority) {
    static Attributes made;
    made = {qosClass, relativePriority};
    return &made;
}

void* dispatch_queue_create(const char* label, void* attributes) {
    auto* const queue = new FakeQueue;
    queue->facts.label = label;
    if (attributes != nullptr) {
        queue->facts.qualityOfService = static_cast<Attributes*>(attributes)->qualityOfService;
        queue->facts.relativePriority = static_cast<Attributes*>(attributes)->relativePriority;
    }
    return queue;
}

void dispatch_async_f(void* queue, void* context, void (*work)(void*)) {
    fakeDispatch::post(queue, [work, context] { work(context); });
}

std::uint64_t dispatch_time(std::uint64_t when, std::int64_t delta) {
    return (when == 0 ? present : when) + static_cast<std::uint64_t>(delta);
}

void dispatch_after_f(std::uint64_t when, void* queue, void* context, void (*work)(void*)) {
    auto* const target = static_cast<FakeQueue*>(queue);
    target->retain();
    delayed.push_back({when, {target, [work, context] { work(context); }}});
}

void dispatch_queue_set_specific(void* queue, const void* key, void* context, void (*)(void*)) {
    static_cast<FakeQueue*>(queue)->specifics[key] = context;
}

void* dispatch_get_specific(const void* key) {
    return running != nullptr && running->specifics.count(key) != 0 ? running->specifics[key] : nullptr;
}

void* dispatch_data_create(const void* buffer, std::size_t size, void*, void (^destructor)(void)) {
    const std::string_view bytes(static_cast<const char*>(buffer), size);
    if (destructor == nullptr) {
        return new FakeData({std::string(bytes)});
    }
    return new FakeData(bytes, destructor);
}

void* dispatch_data_create_map(void* data, const void** buffer, std::size_t* size) {
    auto* const mapped = new FakeData({static_cast<FakeData*>(data)->bytes()});
    *buffer = mapped->firstRegion().data();
    *size = mapped->firstRegion().size();
    return mapped;
}

void dispatch_retain(void* object) {
    static_cast<FakeObject*>(object)->retain();
}

void dispatch_release(void* object) {
    static_cast<FakeObject*>(object)->release();
}

} // extern "C"

} // namespace velloway::test
