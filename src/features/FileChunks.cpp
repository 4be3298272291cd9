#include "features/FileChunks.h"

#include "features/FileMessages.h"
#include "features/Fingerprint.h"

#include <algorithm>
#include <utility>

namespace velloway {

namespace {

/// How far texts are made ahead of the fastest connection.
constexpr std::uint64_t textsAhead = 4;
/// Each open file takes a descriptor, of which a process may have about a thousand.
constexpr int mostOpenFiles = 64;

NetworkError errorFrom(const std::error_code& error) {
    return {.localizedDescription = error.message(), .description = error.message()};
}

NetworkError changed() {
    constexpr const char* text = "The file has changed since it was read";
    return {.localizedDescription = text, .description = text};
}

} // namespace

FileChunks::FileChunks(std::shared_ptr<ChunkMaker> maker, Files& files, std::filesystem::path path,
                       std::string fileName)
    : maker_(std::move(maker)),
      files_(files),
      path_(std::move(path)),
      fileName_(std::move(fileName)),
      number_(maker_->newFile()) {}

FileChunks::~FileChunks() {
    if (again_) {
        --maker_->openFiles;
    }
}

// The first reading.

std::optional<std::int64_t> FileChunks::open(std::error_code& error) {
    first_ = files_.open(path_, error);
    if (!first_) {
        return std::nullopt;
    }
    const auto size = first_->size(error);
    if (!size) {
        first_.reset();
        return std::nullopt;
    }
    size_ = *size;
    if (size_ > 0 && maker_->openFiles < mostOpenFiles) {
        std::error_code ignored;
        again_ = files_.open(path_, ignored);
        maker_->openFiles += again_ ? 1 : 0;
    }
    return size;
}

FileChunks::Piece FileChunks::readNext(bool isTextWanted, std::string& room) {
    Piece piece;
    Extent extent;
    if (!extents_.empty()) {
        extent.offset = extents_.back().offset + static_cast<std::int64_t>(extents_.back().length);
    }
    char* const buffer = maker_->buffer();
    extent.length = first_->readAt(extent.offset, buffer, chunkSize, piece.error).value_or(0);
    if (extent.length == 0) {
        return piece;
    }
    const std::string_view bytes(buffer, extent.length);
    extent.fingerprint = fingerprint(bytes);
    extents_.push_back(extent);
    piece.end = extent.offset + static_cast<std::int64_t>(extent.length);
    if (isTextWanted) {
        piece.text = text(extent, bytes, std::move(room)).value_or("");
    }
    return piece;
}

std::error_code FileChunks::close() {
    const auto file = std::move(first_);
    return file->close();
}

std::optional<std::string> FileChunks::text(const Extent& extent, std::string_view bytes,
                                            std::string room) const {
    const bool isLast = extent.offset + static_cast<std::int64_t>(extent.length) >= size_;
    return fileChunkMessage(fileName_, bytes, isLast,
                            bytes.size() == chunkSize ? std::move(room) : std::string());
}

bool FileChunks::isNextTextWanted() const {
    return readCount_ < takenCount_ + textsAhead;
}

std::uint64_t FileChunks::didReadNext(std::string text) {
    const std::uint64_t index = readCount_++;
    if (!text.empty()) {
        maker_->keep(number_, index, std::move(text));
    }
    return index;
}

// What the connections take.

SharedText FileChunks::atHand(std::uint64_t index) {
    take(index);
    return index < brokenAt_ ? maker_->find(number_, index) : nullptr;
}

void FileChunks::make(std::uint64_t index, Made made) {
    if (index >= brokenAt_) {
        maker_->server.async([made = std::move(made), error = error_] { made(nullptr, error); });
        return;
    }
    request(index);
    waiting_[index].push_back(std::move(made));
}

void FileChunks::request(std::uint64_t index) {
    if (waiting_.try_emplace(index).second) {
        maker_->request(weak_from_this(), index);
    }
}

/// Has the text after the one that the fastest connection takes made in time.
void FileChunks::take(std::uint64_t index) {
    if (index < takenCount_) {
        return;
    }
    takenCount_ = index + 1;
    if (takenCount_ < std::min(readCount_, brokenAt_) && !maker_->find(number_, takenCount_)) {
        request(takenCount_);
    }
}

FileChunks::Again FileChunks::readAgain(std::uint64_t index, std::string room) {
    const Extent& extent = extents_.at(index);
    std::error_code error;
    const auto opened = again_ ? nullptr : files_.open(path_, error);
    FileReader* const file = again_ ? again_.get() : opened.get();
    if (!file) {
        return {.error = errorFrom(error)};
    }
    char* const buffer = maker_->buffer();
    const auto length = file->readAt(extent.offset, buffer, extent.length, error);
    if (!length) {
        return {.error = errorFrom(error)};
    }
    const std::string_view bytes(buffer, *length);
    if (bytes.size() != extent.length || fingerprint(bytes) != extent.fingerprint) {
        return {.error = changed()};
    }
    auto made = text(extent, bytes, std::move(room));
    return made ? Again{.text = *std::move(made)} : Again{.error = changed()};
}

void FileChunks::didReadAgain(std::uint64_t index, Again read) {
    SharedText text;
    if (read.error && index < brokenAt_) {
        brokenAt_ = index;
        error_ = *read.error;
    }
    if (!read.error && index < brokenAt_) {
        text = maker_->keep(number_, index, std::move(read.text));
    }
    const auto waiting = waiting_.extract(index);
    if (waiting.empty()) {
        return;
    }
    for (const Made& made : waiting.mapped()) {
        made(text, text ? std::nullopt : std::optional(error_));
    }
}

} // namespace velloway
