#include "hosts/mac/MacDispatchQueue.h"

#include "hosts/mac/NativeRef.h"

#include <algorithm>

namespace velloway {

namespace {

/// Its address names the mark by which a queue knows itself.
const char identityKey = 0;

void runAndDelete(void* context) {
    const std::unique_ptr<DispatchQueue::Job> job(static_cast<DispatchQueue::Job*>(context));
    (*job)();
}

} // namespace

struct MacDispatchQueue::Native {
    DispatchRef<dispatch_queue_t> queue;
};

MacDispatchQueue::MacDispatchQueue(const char* label) : native_(std::make_unique<Native>()) {
    const auto attributes =
        dispatch_queue_attr_make_with_qos_class(DISPATCH_QUEUE_SERIAL, QOS_CLASS_UTILITY, 0);
    native_->queue = DispatchRef<dispatch_queue_t>::adopt(dispatch_queue_create(label, attributes));
    dispatch_queue_set_specific(native_->queue.get(), &identityKey, this, nullptr);
}

MacDispatchQueue::~MacDispatchQueue() = default;

void MacDispatchQueue::async(Job job) {
    dispatch_async_f(native_->queue.get(), new Job(std::move(job)), runAndDelete);
}

void MacDispatchQueue::asyncAfter(std::chrono::nanoseconds delay, Job job) {
    const auto due = dispatch_time(DISPATCH_TIME_NOW, std::max<std::int64_t>(0, delay.count()));
    dispatch_after_f(due, native_->queue.get(), new Job(std::move(job)), runAndDelete);
}

bool MacDispatchQueue::isCurrent() const {
    return dispatch_get_specific(&identityKey) == this;
}

void* MacDispatchQueue::native() const {
    return native_->queue.get();
}

} // namespace velloway
