#pragma once

#include "features/ChunkMaker.h"
#include "platform/Files.h"
#include "platform/Network.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace velloway {

/// The chunks of one file as messages. The file is read once from its start to its end, whether or not anybody
/// takes the messages; a message that nobody could take then is made by reading its piece again. The bytes must
/// then be the same as before. A piece that has changed or cannot be read is the end of the file for everybody
/// who has not got further yet, so that no phone ever gets a file with a hole.
class FileChunks final : public TextSeries,
                         public RepeatableChunks,
                         public std::enable_shared_from_this<FileChunks> {
public:
    static constexpr std::size_t chunkSize = ChunkMaker::chunkSize;

    /// Server queue.
    FileChunks(std::shared_ptr<ChunkMaker> maker, Files& files, std::filesystem::path path,
               std::string fileName);
    ~FileChunks() override;

    /// Opens the file and returns its size. Reading queue, as all of the first reading.
    std::optional<std::int64_t> open(std::error_code& error);

    struct Piece {
        /// Empty when none was wanted.
        std::string text;
        /// How far the file has been read; absent when nothing came.
        std::optional<std::int64_t> end;
        std::error_code error;
    };
    /// Reads the next chunk, and makes its text in the memory of `room` when that is wanted.
    Piece readNext(bool isTextWanted, std::string& room);
    /// Ends the first reading.
    std::error_code close();

    /// Whether a connection is soon to take the text of the next chunk. Server queue, as everything below where
    /// nothing else is said.
    bool isNextTextWanted() const;
    /// One more chunk has been read, with its text or an empty one; returns its index.
    std::uint64_t didReadNext(std::string text);

    SharedText atHand(std::uint64_t index) override;
    void make(std::uint64_t index, Made made) override;

    Again readAgain(std::uint64_t index, std::string room) override;
    void didReadAgain(std::uint64_t index, Again read) override;

private:
    struct Extent {
        std::int64_t offset = 0;
        std::size_t length = 0;
        std::uint64_t fingerprint = 0;
    };

    void request(std::uint64_t index);
    void take(std::uint64_t index);
    std::optional<std::string> text(const Extent& extent, std::string_view bytes, std::string room) const;

    const std::shared_ptr<ChunkMaker> maker_;
    Files& files_;
    const std::filesystem::path path_;
    const std::string fileName_;
    const std::uint64_t number_;

    // Reading queue.
    std::unique_ptr<FileReader> first_;
    /// Null when too many files wait; the path is then opened again for each piece.
    std::unique_ptr<FileReader> again_;
    std::int64_t size_ = 0;
    std::vector<Extent> extents_;

    // Server queue.
    std::uint64_t readCount_ = 0;
    /// How many chunks the fastest connection has taken.
    std::uint64_t takenCount_ = 0;
    /// Who waits for a text that is being made.
    std::map<std::uint64_t, std::vector<Made>> waiting_;
    /// From this chunk on nothing is given any more, because of `error_`.
    std::uint64_t brokenAt_ = std::numeric_limits<std::uint64_t>::max();
    NetworkError error_;
};

} // namespace velloway
