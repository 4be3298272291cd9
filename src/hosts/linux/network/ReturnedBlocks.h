#pragma once

#include <array>
#include <cstddef>
#include <cstdlib>
#include <mutex>
#include <utility>

namespace velloway {

/// Memory that one buffer has handed over and that has come back, for its next large message: fresh memory
/// has to be cleared by the system page by page. Any thread.
class ReturnedBlocks {
public:
    struct Block {
        char* memory = nullptr;
        std::size_t capacity = 0;
    };

    ReturnedBlocks() = default;
    ~ReturnedBlocks() { freeAll(); }
    ReturnedBlocks(const ReturnedBlocks&) = delete;
    ReturnedBlocks& operator=(const ReturnedBlocks&) = delete;

    /// Takes the block over, and frees it when there are enough.
    void put(Block block) {
        {
            const std::lock_guard lock(mutex_);
            for (Block& place : blocks_) {
                if (!place.memory) {
                    place = std::exchange(block, {});
                    break;
                }
            }
        }
        std::free(block.memory);
    }

    /// A block of at least this capacity, or none. The caller's from then on.
    Block take(std::size_t least) {
        const std::lock_guard lock(mutex_);
        for (Block& place : blocks_) {
            if (place.memory && place.capacity >= least) {
                return std::exchange(place, {});
            }
        }
        return {};
    }

    void freeAll() {
        for (Block block = take(0); block.memory; block = take(0)) {
            std::free(block.memory);
        }
    }

private:
    std::mutex mutex_;
    std::array<Block, 2> blocks_;
};

} // namespace velloway
