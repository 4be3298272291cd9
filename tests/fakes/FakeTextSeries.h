#pragma once

#include "platform/DispatchQueue.h"
#include "platform/Network.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velloway::test {

/// A series that makes its texts on the queue of its connections and keeps none of them.
class FakeTextSeries : public TextSeries {
public:
    using Text = std::function<std::string(std::uint64_t index)>;

    FakeTextSeries(DispatchQueue& queue, Text text) : queue_(queue), text_(std::move(text)) {}

    SharedText atHand(std::uint64_t index) override { return isAtHand && !isBroken ? made(index) : nullptr; }
    void make(std::uint64_t index, Made done) override {
        if (isHeldBack) {
            heldBack_.emplace_back(index, std::move(done));
            return;
        }
        queue_.async([this, index, done = std::move(done)] {
            if (isBroken) {
                done(nullptr, NetworkError{"Input/output error", "system:5"});
            } else {
                done(made(index), std::nullopt);
            }
        });
    }

    // What the test does.
    /// Makes what was asked for while `isHeldBack`. On the queue.
    void release() {
        isHeldBack = false;
        for (auto& [index, done] : std::exchange(heldBack_, {})) {
            make(index, std::move(done));
        }
    }
    std::atomic<bool> isHeldBack = false;
    /// Whether texts need not be made first.
    std::atomic<bool> isAtHand = false;
    std::atomic<bool> isBroken = false;
    std::atomic<int> madeCount = 0;
    /// How many of the texts are held by somebody.
    int heldCount() const { return static_cast<int>(alive_.use_count()) - 1; }

private:
    SharedText made(std::uint64_t index) {
        ++madeCount;
        return {new std::string(text_(index)), [alive = alive_](const std::string* text) { delete text; }};
    }

    DispatchQueue& queue_;
    Text text_;
    std::vector<std::pair<std::uint64_t, Made>> heldBack_;
    std::shared_ptr<int> alive_ = std::make_shared<int>();
};

} // namespace velloway::test
