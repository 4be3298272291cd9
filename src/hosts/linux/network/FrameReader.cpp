#include "hosts/linux/network/FrameReader.h"

#include "text/Utf8.h"

#include <algorithm>
#include <cstring>

namespace velloway {

namespace {

/// One read takes at least so many bytes where they are there.
constexpr std::size_t readBytes = std::size_t{64} << 10;
/// And at most so many: copying, unmasking and checking them is what others have to wait for.
constexpr std::size_t mostReadBytes = std::size_t{256} << 10;
/// Enough for a file chunk with its escapes; more is given back after the message.
constexpr std::size_t keptBytes = std::size_t{4} << 20;
/// So many after a large one, and the next large one is not expected soon.
constexpr std::uint64_t fewSmallMessages = 64;
/// Unmasked and checked in pieces that stay in the processor's cache.
constexpr std::size_t pieceBytes = std::size_t{16} << 10;
constexpr std::size_t maxControlBytes = 125;

std::uint8_t byteOf(char c) {
    return static_cast<std::uint8_t>(c);
}

std::uint64_t bigEndian(const char* bytes, std::size_t count) {
    std::uint64_t value = 0;
    for (std::size_t index = 0; index < count; ++index) {
        value = value << 8 | byteOf(bytes[index]);
    }
    return value;
}

/// Compilers make vector instructions of it on every processor that has them.
using Block __attribute__((vector_size(64))) = std::uint32_t;

void unmask(char* bytes, std::size_t count, const std::array<char, 4>& mask) {
    std::uint32_t word = 0;
    std::memcpy(&word, mask.data(), mask.size());
    std::size_t index = 0;
    for (; index + sizeof(Block) <= count; index += sizeof(Block)) {
        Block block;
        std::memcpy(&block, bytes + index, sizeof block);
        block ^= word;
        std::memcpy(bytes + index, &block, sizeof block);
    }
    for (; index < count; ++index) {
        bytes[index] = static_cast<char>(bytes[index] ^ mask[index % 4]);
    }
}

/// The mask for what follows a piece of `count` bytes.
std::array<char, 4> maskAfter(const std::array<char, 4>& mask, std::size_t count) {
    return {mask[count % 4], mask[(count + 1) % 4], mask[(count + 2) % 4], mask[(count + 3) % 4]};
}

std::size_t characterLength(std::uint8_t first) {
    return first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC0 ? 2 : 1;
}

/// How many bytes at the end begin a character that goes on after them.
std::size_t openCharacter(std::string_view text) {
    const std::size_t reach = std::min<std::size_t>(text.size(), 3);
    for (std::size_t back = 1; back <= reach; ++back) {
        const std::uint8_t byte = byteOf(text[text.size() - back]);
        if ((byte & 0xC0) != 0x80) {
            return characterLength(byte) > back ? back : 0;
        }
    }
    return 0;
}

/// Whether a character can begin so: tries the smallest and the largest bytes that may follow.
bool canBecomeCharacter(std::string_view begun) {
    const std::uint8_t first = byteOf(begun.front());
    std::array<char, 4> whole{};
    const std::size_t length = characterLength(first);
    std::copy(begun.begin(), begun.end(), whole.begin());
    for (const unsigned filler : {0x80U, 0xBFU}) {
        std::fill(whole.begin() + static_cast<std::ptrdiff_t>(begun.size()), whole.end(),
                  static_cast<char>(filler));
        if (isUtf8({whole.data(), length})) {
            return true;
        }
    }
    return false;
}

/// Whether a far end may close with this number.
bool isCloseCode(std::uint64_t code) {
    if (code < 1000 || (code > 1015 && code < 3000)) {
        return false;
    }
    return code != 1004 && code != 1005 && code != 1006 && code != 1014 && code != 1015;
}

} // namespace

FrameReader::FrameReader(std::size_t maxMessageBytes)
    : maxMessageBytes_(maxMessageBytes), buffer_(maxMessageBytes + 2 * readBytes) {}

std::span<char> FrameReader::prepare() {
    dropMessage();
    closeGap();
    const std::size_t front = isInMessage_ ? messageStart_ : position_;
    if (front == buffer_.size()) {
        buffer_.clear(keptBytes);
        position_ = 0;
        messageStart_ = messageEnd_ = checkedEnd_ = 0;
    } else if (front > 0 && buffer_.capacity() - buffer_.size() < readBytes) {
        buffer_.erase(0, front);
        position_ -= front;
        messageStart_ -= std::min(messageStart_, front);
        messageEnd_ -= std::min(messageEnd_, front);
        checkedEnd_ -= std::min(checkedEnd_, front);
    }
    // What is left of a large frame and no more, so that the next one begins at the start of the buffer.
    const std::size_t room = std::max(buffer_.capacity() - buffer_.size(), buffer_.size());
    const auto wanted = std::min<std::uint64_t>(remaining_, std::min(room, mostReadBytes));
    const std::size_t count = std::max<std::size_t>(wanted, readBytes);
    return buffer_.prepare(std::min(count, buffer_.maxSize() - buffer_.size()));
}

/// Headers inside a message would take memory that the bound on messages does not count.
void FrameReader::closeGap() {
    if (isInMessage_ && position_ > messageEnd_) {
        buffer_.erase(messageEnd_, position_ - messageEnd_);
        position_ = messageEnd_;
    }
}

void FrameReader::commit(std::size_t count) {
    buffer_.commit(count);
}

void FrameReader::clear() {
    hasEnded_ = true;
    buffer_.clear(0);
    buffer_.freeReturned();
    position_ = 0;
}

FrameReader::Event FrameReader::next() {
    dropMessage();
    while (!hasEnded_) {
        if (!isInFrame_) {
            const Event event = startFrame();
            if (event.kind != Kind::incomplete || !isInFrame_) {
                return event;
            }
        }
        if (!takePayload()) {
            return failure(closeCode::badText);
        }
        if (remaining_ > 0) {
            break;
        }
        isInFrame_ = false;
        if (isFinal_) {
            if (isText_ && checkedEnd_ != messageEnd_) {
                return failure(closeCode::badText);
            }
            isInMessage_ = false;
            isDelivered_ = true;
            return {.kind = Kind::message,
                    .bytes = buffer_.text().substr(messageStart_, messageEnd_ - messageStart_)};
        }
    }
    return {};
}

std::shared_ptr<const void> FrameReader::keepMessage() {
    auto kept = buffer_.detach(position_, std::min(buffer_.capacity(), keptBytes));
    if (kept) {
        isDelivered_ = false;
        countSmall(messageEnd_ - messageStart_);
        position_ = messageStart_ = messageEnd_ = checkedEnd_ = 0;
    }
    return kept;
}

void FrameReader::dropMessage() {
    if (isDelivered_) {
        isDelivered_ = false;
        countSmall(messageEnd_ - messageStart_);
        messageStart_ = messageEnd_ = checkedEnd_ = position_;
    }
}

/// The memory of large messages goes once only small ones come.
void FrameReader::countSmall(std::size_t messageBytes) {
    smallInARow_ = messageBytes >= readBytes ? 0 : smallInARow_ + 1;
    if (smallInARow_ == fewSmallMessages) {
        buffer_.freeReturned();
    }
}

FrameReader::Event FrameReader::failure(std::uint16_t code) {
    hasEnded_ = true;
    return {.kind = Kind::failure, .code = code};
}

// Frames.

/// Reads a frame header. Of a data frame the payload comes next; a control frame is taken as a whole. Returns
/// `incomplete` either way when there is nothing to report.
FrameReader::Event FrameReader::startFrame() {
    for (;;) {
        Header header;
        switch (parseHeader(header)) {
        case Found::incomplete:
            return {};
        case Found::breach:
            return failure(closeCode::protocolError);
        case Found::header:
            break;
        }
        if (header.opcode < closing) {
            const std::uint16_t code = beginData(header);
            return code != 0 ? failure(code) : Event{};
        }
        if (buffer_.size() - position_ < header.size + header.length) {
            return {};
        }
        const Event event = control(header);
        if (event.kind != Kind::incomplete) {
            return event;
        }
    }
}

FrameReader::Found FrameReader::parseHeader(Header& header) const {
    const std::string_view bytes = buffer_.text().substr(position_);
    if (bytes.empty()) {
        return Found::incomplete;
    }
    header.isFinal = (byteOf(bytes[0]) & 0x80) != 0;
    header.opcode = static_cast<Opcode>(byteOf(bytes[0]) & 0x0F);
    const bool isControl = header.opcode >= closing;
    const bool isKnown = header.opcode <= binary || (isControl && header.opcode <= pong);
    if ((byteOf(bytes[0]) & 0x70) != 0 || !isKnown || (isControl && !header.isFinal)) {
        return Found::breach;
    }
    if (bytes.size() < 2) {
        return Found::incomplete;
    }
    header.length = byteOf(bytes[1]) & 0x7F;
    const bool isMasked = (byteOf(bytes[1]) & 0x80) != 0;
    if (!isMasked || (isControl && header.length > maxControlBytes)) {
        return Found::breach;
    }
    const std::size_t lengthBytes = header.length == 127 ? 8 : header.length == 126 ? 2 : 0;
    header.size = 2 + lengthBytes + header.mask.size();
    if (bytes.size() < header.size) {
        return Found::incomplete;
    }
    if (lengthBytes > 0) {
        header.length = bigEndian(bytes.data() + 2, lengthBytes);
        if (header.length < (lengthBytes == 2 ? 126U : 65536U)) {
            return Found::breach;
        }
    }
    std::copy_n(bytes.data() + 2 + lengthBytes, header.mask.size(), header.mask.begin());
    return Found::header;
}

/// Returns the close code when the frame may not come now, or 0.
std::uint16_t FrameReader::beginData(const Header& header) {
    if ((header.opcode == continuation) != isInMessage_) {
        return closeCode::protocolError;
    }
    const std::size_t before = isInMessage_ ? messageEnd_ - messageStart_ : 0;
    if (header.length > maxMessageBytes_ - before) {
        return closeCode::tooBig;
    }
    position_ += header.size;
    if (!isInMessage_) {
        isInMessage_ = true;
        isText_ = header.opcode == text;
        messageStart_ = messageEnd_ = checkedEnd_ = position_;
    }
    isInFrame_ = true;
    isFinal_ = header.isFinal;
    remaining_ = header.length;
    mask_ = header.mask;
    return 0;
}

/// Returns false when a text is none.
bool FrameReader::takePayload() {
    char* const bytes = buffer_.bytes();
    while (remaining_ > 0 && position_ < buffer_.size()) {
        const std::size_t there = std::min<std::uint64_t>(remaining_, buffer_.size() - position_);
        const std::size_t count = std::min(there, pieceBytes);
        if (messageEnd_ != position_) {
            std::memmove(bytes + messageEnd_, bytes + position_, count);
        }
        unmask(bytes + messageEnd_, count, mask_);
        mask_ = maskAfter(mask_, count);
        messageEnd_ += count;
        position_ += count;
        remaining_ -= count;
        if (isText_ && !checkText()) {
            return false;
        }
    }
    return true;
}

bool FrameReader::checkText() {
    const std::string_view unchecked = buffer_.text().substr(checkedEnd_, messageEnd_ - checkedEnd_);
    const std::size_t open = openCharacter(unchecked);
    const std::size_t whole = unchecked.size() - open;
    checkedEnd_ += whole;
    return isUtf8(unchecked.substr(0, whole)) && (open == 0 || canBecomeCharacter(unchecked.substr(whole)));
}

FrameReader::Event FrameReader::control(const Header& header) {
    char* const payload = buffer_.bytes() + position_ + header.size;
    unmask(payload, header.length, header.mask);
    position_ += header.size + header.length;
    const std::string_view bytes{payload, header.length};
    if (header.opcode == closing) {
        hasEnded_ = true; // Nothing may follow it.
        return closeEvent(bytes);
    }
    return header.opcode == ping ? Event{.kind = Kind::ping, .bytes = bytes} : Event{};
}

FrameReader::Event FrameReader::closeEvent(std::string_view payload) {
    if (payload.empty()) {
        return {.kind = Kind::close};
    }
    const std::uint64_t code = payload.size() < 2 ? 0 : bigEndian(payload.data(), 2);
    if (!isCloseCode(code) || !isUtf8(payload.substr(2))) {
        return {.kind = Kind::failure, .code = closeCode::protocolError};
    }
    return {.kind = Kind::close, .bytes = payload.substr(2), .code = static_cast<std::uint16_t>(code)};
}

} // namespace velloway
