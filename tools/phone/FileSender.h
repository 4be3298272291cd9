#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string>

namespace velloway::phone {

struct FileSendOptions {
    std::string path;
    /// What the file is called on the wire; the last part of the path when empty.
    std::string name;
    std::size_t chunkSize = 1 << 20;
    /// Whether each slash of the base64 text goes out as `\/`, as phones write it.
    bool escaped = true;
    /// The whole file in one `file_transfer`.
    bool isWhole = false;
    bool withStart = true;
    /// Leaves out this many chunks at the head, as after a break.
    std::size_t firstChunk = 0;
    /// The link is cut, without a goodbye, after this many chunks.
    std::optional<std::size_t> cutAfterChunks;
};

/// Gives the messages of one file, one at a time, so that a file of any size takes the memory of one chunk.
class FileSender {
public:
    /// Throws std::runtime_error when the file cannot be read.
    explicit FileSender(FileSendOptions options);

    /// The next message; absent after the last.
    std::optional<std::string> next();

    /// Whether the link is to be cut now.
    bool mustCut() const { return options_.cutAfterChunks && chunks_ >= *options_.cutAfterChunks; }

    std::int64_t sent() const { return sent_; }
    std::int64_t size() const { return size_; }
    const std::string& name() const { return options_.name; }

private:
    std::string chunk();

    FileSendOptions options_;
    std::ifstream file_;
    std::int64_t size_ = 0;
    std::int64_t sent_ = 0;
    std::size_t chunks_ = 0;
    bool isStarted_ = false;
    bool isOver_ = false;
};

} // namespace velloway::phone
