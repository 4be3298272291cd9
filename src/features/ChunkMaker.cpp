#include "features/ChunkMaker.h"

#include <algorithm>
#include <utility>

namespace velloway {

namespace {

/// A text has 1.4 MB, and twice that at worst.
constexpr std::size_t mostLatestBytes = std::size_t{12} << 20;
/// Enough for the text of a full chunk, unless it has far more slashes than others. All get the same: the
/// allocator could not use memory of a slightly shorter one again.
constexpr std::size_t usualTextSize = ChunkMaker::chunkSize / 3 * 4 / 32 * 33 + 1024;
/// While the server queue takes one over, the next is read.
constexpr int mostInProgress = 2;

} // namespace

SharedText ChunkMaker::find(std::uint64_t file, std::uint64_t index) {
    const auto found = std::find_if(latest_.begin(), latest_.end(),
                                    [&](const Text& each) { return each.file == file && each.index == index; });
    if (found == latest_.end()) {
        return nullptr;
    }
    std::rotate(found, found + 1, latest_.end());
    return latest_.back().text;
}

SharedText ChunkMaker::keep(std::uint64_t file, std::uint64_t index, std::string text) {
    latestBytes_ += text.capacity();
    auto shared = std::make_shared<std::string>(std::move(text));
    latest_.push_back({file, index, shared});
    while (latestBytes_ > mostLatestBytes && latest_.size() > 1) {
        dropOldest();
    }
    return shared;
}

void ChunkMaker::dropOldest() {
    const std::shared_ptr<std::string> text = std::move(latest_.front().text);
    latest_.pop_front();
    latestBytes_ -= text->capacity();
    // Fresh memory for every text would take as long as filling it.
    if (text.use_count() == 1) {
        spare_ = std::move(*text);
    }
}

std::string ChunkMaker::room() {
    std::string room = std::exchange(spare_, {});
    room.reserve(usualTextSize);
    return room;
}

char* ChunkMaker::buffer() {
    if (!buffer_) {
        buffer_ = std::make_unique_for_overwrite<char[]>(chunkSize);
    }
    return buffer_.get();
}

void ChunkMaker::request(std::weak_ptr<RepeatableChunks> file, std::uint64_t index) {
    requests_.push_back({std::move(file), index});
    readNext();
}

void ChunkMaker::readNext() {
    while (inProgress_ < mostInProgress && !requests_.empty()) {
        const Request next = std::move(requests_.front());
        requests_.pop_front();
        const auto file = next.file.lock();
        if (!file) {
            continue;
        }
        ++inProgress_;
        reading.async([self = shared_from_this(), file, index = next.index, room = room()]() mutable {
            self->server.async([self, file, index, read = file->readAgain(index, std::move(room))]() mutable {
                --self->inProgress_;
                file->didReadAgain(index, std::move(read));
                self->readNext();
            });
        });
    }
}

} // namespace velloway
