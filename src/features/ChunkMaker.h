#pragma once

#include "platform/DispatchQueue.h"
#include "platform/Network.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>

namespace velloway {

/// A file whose chunks can be made once more. Both are called by `ChunkMaker`.
class RepeatableChunks {
public:
    virtual ~RepeatableChunks() = default;

    struct Again {
        std::string text;
        std::optional<NetworkError> error;
    };
    /// Reads the chunk and makes its text, in the memory of `room`. Reading queue.
    virtual Again readAgain(std::uint64_t index, std::string room) = 0;
    /// Server queue.
    virtual void didReadAgain(std::uint64_t index, Again read) = 0;
};

/// Makes the texts of files that are being sent, a few at a time and on a queue of their own, and keeps the
/// latest of them: all connections share it, and so much memory is all that sending takes. Lives as long as
/// there is a file to be sent. Server queue, where nothing else is said.
class ChunkMaker : public std::enable_shared_from_this<ChunkMaker> {
public:
    static constexpr std::size_t chunkSize = 0x100000;

    ChunkMaker(DispatchQueue& serverQueue, DispatchQueue& readingQueue)
        : server(serverQueue), reading(readingQueue) {}

    DispatchQueue& server;
    /// Where files are read.
    DispatchQueue& reading;

    /// A number for one more file.
    std::uint64_t newFile() { return ++lastFile_; }

    /// Null when the text is not among the latest.
    SharedText find(std::uint64_t file, std::uint64_t index);
    SharedText keep(std::uint64_t file, std::uint64_t index, std::string text);
    /// Memory for one text, if possible that of one which nobody needs any more.
    std::string room();
    /// Has the file make one text, after those that were requested before; the file gets the answer.
    void request(std::weak_ptr<RepeatableChunks> file, std::uint64_t index);

    /// Room for one chunk. Reading queue.
    char* buffer();
    /// Files that stay open until they were sent. Any thread.
    std::atomic<int> openFiles = 0;

private:
    struct Text {
        std::uint64_t file = 0;
        std::uint64_t index = 0;
        std::shared_ptr<std::string> text;
    };
    struct Request {
        std::weak_ptr<RepeatableChunks> file;
        std::uint64_t index = 0;
    };

    void dropOldest();
    void readNext();

    /// The one that was needed last at the end.
    std::deque<Text> latest_;
    std::size_t latestBytes_ = 0;
    /// Never two at once: what is given up is needed at once for what replaces it.
    std::string spare_;
    std::deque<Request> requests_;
    int inProgress_ = 0;
    std::uint64_t lastFile_ = 0;
    std::unique_ptr<char[]> buffer_;
};

} // namespace velloway
