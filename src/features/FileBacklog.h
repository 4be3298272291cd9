#pragma once

#include <cstddef>
#include <functional>
#include <utility>

namespace velloway {

/// What one phone has sent for files and the file queue has not finished yet. Server queue only.
class FileBacklog {
public:
    /// While so much waits, nothing more is read from the phone. One message may go beyond it.
    static constexpr std::size_t mostBytes = std::size_t{4} << 20;

    bool isEmpty() const { return jobs_ == 0; }
    bool isFull() const { return bytes_ >= mostBytes; }

    void add(std::size_t bytes) {
        ++jobs_;
        bytes_ += bytes;
    }
    /// One job is finished.
    void remove(std::size_t bytes) {
        --jobs_;
        bytes_ -= bytes;
        if (onLess_) {
            onLess_();
        }
    }

    /// Called whenever a job is finished.
    void setOnLess(std::function<void()> onLess) { onLess_ = std::move(onLess); }

private:
    std::size_t jobs_ = 0;
    std::size_t bytes_ = 0;
    std::function<void()> onLess_;
};

} // namespace velloway
