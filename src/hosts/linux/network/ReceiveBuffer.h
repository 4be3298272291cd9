#pragma once

#include "hosts/linux/network/ReturnedBlocks.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <span>
#include <stdexcept>
#include <string_view>

namespace velloway {

/// Contiguous growing bytes. A parser may always read `readableAfter` bytes past the end, and growing moves a
/// large block without copying.
class ReceiveBuffer {
public:
    static constexpr std::size_t readableAfter = 64;

    explicit ReceiveBuffer(std::size_t maxSize) : maxSize_(maxSize) {}
    ~ReceiveBuffer() { std::free(memory_); }
    ReceiveBuffer(const ReceiveBuffer&) = delete;
    ReceiveBuffer& operator=(const ReceiveBuffer&) = delete;

    std::size_t size() const { return size_; }
    std::size_t maxSize() const { return maxSize_; }
    std::size_t capacity() const { return capacity_; }
    char* bytes() { return memory_; }
    std::string_view text() const { return size_ ? std::string_view{memory_, size_} : std::string_view{""}; }

    /// Room for `count` bytes after the end. Throws `std::length_error` when there is no room or no memory.
    std::span<char> prepare(std::size_t count) {
        if (count > maxSize_ - size_) {
            throw std::length_error("message too long");
        }
        if (size_ + count > capacity_) {
            grow(std::max(size_ + count, std::min(2 * capacity_, maxSize_)));
        }
        return {memory_ + size_, count};
    }
    void commit(std::size_t count) { size_ += std::min(count, capacity_ - size_); }
    void erase(std::size_t from, std::size_t count) {
        std::copy(memory_ + from + count, memory_ + size_, memory_ + from);
        size_ -= count;
    }

    /// Hands the memory over with all bytes in it; those from `from` on are copied and are this buffer's only
    /// ones afterwards. No more than `capacity` is kept when it comes back. Null when there is no memory for
    /// that; nothing has changed then.
    std::shared_ptr<const void> detach(std::size_t from, std::size_t capacity) {
        const std::size_t rest = size_ - from;
        capacity = std::max(capacity, rest);
        ReturnedBlocks::Block next = returned_->take(capacity);
        if (!next.memory) {
            next = {static_cast<char*>(std::malloc(capacity + readableAfter)), capacity};
        }
        if (!next.memory) {
            return nullptr;
        }
        std::copy(memory_ + from, memory_ + size_, next.memory);
        const auto giveBack = [returned = capacity_ > capacity ? nullptr : returned_,
                               held = capacity_](void* kept) {
            if (returned) {
                returned->put({static_cast<char*>(kept), held});
            } else {
                std::free(kept);
            }
        };
        std::shared_ptr<const void> kept(static_cast<void*>(memory_), giveBack);
        memory_ = next.memory;
        size_ = rest;
        capacity_ = next.capacity;
        return kept;
    }

    /// Frees what was handed over by `detach` and has come back for the next time.
    void freeReturned() { returned_->freeAll(); }

    /// Forgets the bytes, and gives the memory back when it is more than `kept`.
    void clear(std::size_t kept) {
        size_ = 0;
        if (capacity_ > kept) {
            std::free(memory_);
            memory_ = nullptr;
            capacity_ = 0;
        }
    }

private:
    void grow(std::size_t capacity) {
        void* memory = std::realloc(memory_, capacity + readableAfter);
        if (!memory) {
            throw std::length_error("no memory for the message");
        }
        memory_ = static_cast<char*>(memory);
        capacity_ = capacity;
    }

    std::size_t maxSize_;
    char* memory_ = nullptr;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
    std::shared_ptr<ReturnedBlocks> returned_ = std::make_shared<ReturnedBlocks>();
};

} // namespace velloway
