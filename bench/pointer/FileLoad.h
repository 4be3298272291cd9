#pragma once

#include <atomic>
#include <cstdint>
#include <thread>

namespace velloway::bench {

/// A phone that sends one file of 256 MiB after the other over a connection of its own, as long as it exists.
class FileLoad {
public:
    /// As fast as they are taken.
    static constexpr int fullSpeed = 0;

    FileLoad(std::uint16_t port, int mebibytesPerSecond)
        : thread_([this, port, mebibytesPerSecond] { send(port, mebibytesPerSecond); }) {}
    /// Returns when the chunk that is being sent has been taken.
    ~FileLoad() {
        isStopping_ = true;
        thread_.join();
    }
    FileLoad(const FileLoad&) = delete;
    FileLoad& operator=(const FileLoad&) = delete;

private:
    void send(std::uint16_t port, int mebibytesPerSecond) const;

    std::atomic<bool> isStopping_ = false;
    std::thread thread_;
};

} // namespace velloway::bench
