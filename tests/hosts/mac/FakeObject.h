#pragma once

#include <Block.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace velloway::test {

/// What every object of the platform's C interfaces is here: counted, so that a test sees what leaks. Releasing
/// one too often ends the test.
class FakeObject {
public:
    FakeObject() { ++alive; }
    virtual ~FakeObject() { --alive; }
    FakeObject(const FakeObject&) = delete;
    FakeObject& operator=(const FakeObject&) = delete;

    static inline int alive = 0;

    void retain() { ++references_; }
    void release() {
        if (references_ <= 0) {
            std::fputs("a fake object was released too often\n", stderr);
            std::abort();
        }
        if (--references_ == 0) {
            delete this;
        }
    }

private:
    int references_ = 1;
};

/// Holds a copy of a block.
template <class Block> class HeldBlock {
public:
    HeldBlock() = default;
    explicit HeldBlock(Block block) {
        if (block != nullptr) {
            block_ = Block_copy(block);
        }
    }
    HeldBlock(HeldBlock&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
    HeldBlock& operator=(HeldBlock&& other) noexcept {
        std::swap(block_, other.block_);
        return *this;
    }
    ~HeldBlock() { reset(); }

    void reset() {
        if (const Block block = std::exchange(block_, nullptr)) {
            Block_release(block);
        }
    }
    explicit operator bool() const { return block_ != nullptr; }
    template <class... Arguments> void operator()(Arguments... arguments) const {
        // The block may let go of itself while it runs.
        const HeldBlock running(block_);
        running.block_(arguments...);
    }

private:
    Block block_ = nullptr;
};

} // namespace velloway::test
