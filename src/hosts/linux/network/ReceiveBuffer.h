#pragma once

#include <boost/asio/buffer.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string_view>

namespace velloway {

/// Contiguous growing bytes, for Asio's and Beast's dynamic-buffer interface, with two things that theirs lack:
/// a parser may always read `readableAfter` bytes past the end, and growing moves a large block without
/// copying.
class ReceiveBuffer {
public:
    using const_buffers_type = boost::asio::const_buffer;
    using mutable_buffers_type = boost::asio::mutable_buffer;

    static constexpr std::size_t readableAfter = 64;

    explicit ReceiveBuffer(std::size_t maxSize) : maxSize_(maxSize) {}
    ~ReceiveBuffer() { std::free(memory_); }
    ReceiveBuffer(const ReceiveBuffer&) = delete;
    ReceiveBuffer& operator=(const ReceiveBuffer&) = delete;

    std::size_t size() const { return size_; }
    std::size_t max_size() const { return maxSize_; }
    std::size_t capacity() const { return capacity_; }
    const_buffers_type data() const { return {memory_, size_}; }
    std::string_view text() const { return size_ ? std::string_view{memory_, size_} : std::string_view{""}; }

    /// Throws `std::length_error`, which Beast reports as an overflow, when there is no room or no memory.
    mutable_buffers_type prepare(std::size_t count) {
        if (count > maxSize_ - size_) {
            throw std::length_error("message too long");
        }
        if (size_ + count > capacity_) {
            grow(std::max(size_ + count, std::min(2 * capacity_, maxSize_)));
        }
        return {memory_ + size_, count};
    }
    void commit(std::size_t count) { size_ += std::min(count, capacity_ - size_); }
    void consume(std::size_t count) {
        if (count < size_) {
            std::copy(memory_ + count, memory_ + size_, memory_);
        }
        size_ -= std::min(count, size_);
    }

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
};

} // namespace velloway
