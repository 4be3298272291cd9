#pragma once

#include "platform/DispatchQueue.h"
#include "platform/Memory.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace velloway {

/// Gives back the memory that large messages have left free, once the phones have been silent for a while.
/// Server queue only; the giving back is a job of the file queue, where nobody waits.
class MemoryReturn : public std::enable_shared_from_this<MemoryReturn> {
public:
    static constexpr std::size_t largeMessage = std::size_t{1} << 20;
    static constexpr std::chrono::seconds silence{3};

    MemoryReturn(DispatchQueue& server, DispatchQueue& fileQueue, Memory& memory)
        : server_(server), fileQueue_(fileQueue), memory_(memory) {}

    /// A message of `bytes` bytes has been handled.
    void handled(std::size_t bytes) {
        ++messages_;
        if (bytes >= largeMessage && !isWaiting_) {
            isWaiting_ = true;
            wait();
        }
    }

private:
    void wait() {
        server_.asyncAfter(silence, [weak = weak_from_this(), seen = messages_] {
            if (const auto self = weak.lock()) {
                self->waited(seen);
            }
        });
    }
    void waited(std::uint64_t seen) {
        if (messages_ != seen) {
            wait();
            return;
        }
        isWaiting_ = false;
        fileQueue_.async([&memory = memory_] { memory.giveBack(); });
    }

    DispatchQueue& server_;
    DispatchQueue& fileQueue_;
    Memory& memory_;
    std::uint64_t messages_ = 0;
    bool isWaiting_ = false;
};

} // namespace velloway
