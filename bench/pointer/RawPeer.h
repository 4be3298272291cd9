#pragma once

#include "MoveTimes.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <thread>
#include <vector>

namespace velloway::bench {

/// What the machine itself takes: one thread reads a connection and wakes another one for each read, which
/// notes the moves; nothing is parsed. Each connection has a thread of its own, so that none waits for another.
/// One that begins with something else than moves is copied to a file.
class RawPeer {
public:
    /// `moveBytes` is the size of one move on the wire.
    RawPeer(std::uint16_t port, std::size_t moveBytes, std::filesystem::path file, MoveTimes& times);
    ~RawPeer();
    RawPeer(const RawPeer&) = delete;
    RawPeer& operator=(const RawPeer&) = delete;

private:
    void accept();
    void read(int socket);
    void copyToFile(int socket, std::vector<char>& buffer) const;
    void noteMoves();
    void wake(std::size_t moves) const;

    const std::size_t moveBytes_;
    const std::filesystem::path file_;
    MoveTimes& times_;
    std::atomic<bool> isEnding_ = false;
    int listener_ = -1;
    int moves_ = -1;
    std::thread noting_;
    std::thread accepting_;
    std::vector<std::jthread> reading_;
};

} // namespace velloway::bench
