#pragma once

#include "platform/DispatchQueue.h"

#include <memory>

namespace velloway {

/// A serial queue of Grand Central Dispatch with the quality of service "utility". It must outlive its jobs:
/// the system keeps those that wait and runs them even when this object has gone.
class MacDispatchQueue final : public DispatchQueue {
public:
    explicit MacDispatchQueue(const char* label);
    ~MacDispatchQueue() override;

    void async(Job job) override;
    void asyncAfter(std::chrono::nanoseconds delay, Job job) override;
    bool isCurrent() const override;

    /// The `dispatch_queue_t`, which goes with this object. Untyped because Objective-C files see another type
    /// under that name.
    void* native() const;

private:
    struct Native;
    std::unique_ptr<Native> native_;
};

} // namespace velloway
