#include "hosts/linux/network/MessageWriter.h"

#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>
#include <boost/system/errc.hpp>

#include <algorithm>
#include <utility>

namespace velloway {

namespace net = boost::asio;
using boost::system::error_code;

namespace {

/// What an entry of the queue costs beside its text.
constexpr std::size_t bytesPerSend = 128;
/// One call hands over so much at most, so that the completions of large texts are not held up by others.
constexpr std::size_t mostBytesPerWrite = std::size_t{256} << 10;

constexpr std::uint8_t finalFrame = 0x80;
constexpr std::uint8_t textOpcode = 1;
constexpr std::uint8_t closeOpcode = 8;
constexpr std::uint8_t pongOpcode = 10;

/// Writes the header of an unmasked frame and returns its size.
std::size_t writeHeader(std::array<char, 10>& header, std::uint8_t opcode, std::uint64_t length) {
    header[0] = static_cast<char>(finalFrame | opcode);
    const std::size_t lengthBytes = length < 126 ? 0 : length < 65536 ? 2 : 8;
    header[1] = static_cast<char>(lengthBytes == 0 ? length : lengthBytes == 2 ? 126 : 127);
    for (std::size_t index = 0; index < lengthBytes; ++index) {
        header[2 + index] = static_cast<char>(length >> (8 * (lengthBytes - 1 - index)));
    }
    return 2 + lengthBytes;
}

} // namespace

MessageWriter::MessageWriter(PhoneSocket& socket, std::size_t queuedBytes,
                             std::function<std::shared_ptr<void>()> owner, const std::atomic<bool>& isAbandoned,
                             Failed failed)
    : socket_(socket),
      maxQueuedBytes_(queuedBytes),
      owner_(std::move(owner)),
      isAbandoned_(isAbandoned),
      failed_(std::move(failed)) {}

void MessageWriter::start() {
    isStarted_ = true;
    error_code ignored;
    socket_.non_blocking(true, ignored);
    writeNext();
}

bool MessageWriter::send(SharedText text, Completion completion) {
    const std::size_t size = text->size() + bytesPerSend;
    // A single text may have any size: it exists already.
    if (queuedBytes_ > 0 && size > maxQueuedBytes_ - std::min(queuedBytes_, maxQueuedBytes_)) {
        isOverflowing_ = true;
    }
    if (isOverflowing_) {
        text = nullptr;
    } else {
        queuedBytes_ += size;
    }
    outgoing_.push_back({.text = std::move(text), .completion = std::move(completion)});
    writeNext();
    return !isOverflowing_;
}

bool MessageWriter::send(std::shared_ptr<TextSeries> series, std::uint64_t index, Completion completion) {
    if (isOverflowing_) {
        outgoing_.push_back({.completion = std::move(completion)});
        return false;
    }
    // A large file must not take memory for each of its texts.
    if (!outgoing_.empty() && outgoing_.back().series == series &&
        outgoing_.back().first + outgoing_.back().count == index) {
        ++outgoing_.back().count;
        return true;
    }
    outgoing_.push_back({.completion = std::move(completion), .series = std::move(series), .first = index});
    writeNext();
    return true;
}

void MessageWriter::pong(std::string_view payload, std::function<void()> done) {
    addControl(pongOpcode, payload, std::move(done));
}

std::deque<MessageWriter::Unsent> MessageWriter::stop() {
    isStarted_ = false;
    return std::exchange(outgoing_, {});
}

void MessageWriter::close(std::uint16_t code, std::function<void()> done) {
    const std::string payload{static_cast<char>(code >> 8), static_cast<char>(code)};
    addControl(closeOpcode, code != 0 ? payload : "", std::move(done));
}

void MessageWriter::addControl(std::uint8_t opcode, std::string_view payload, std::function<void()> done) {
    std::array<char, 10> header{};
    const std::size_t headerSize = writeHeader(header, opcode, payload.size());
    std::string frame(header.data(), headerSize);
    controls_.push_back({frame.append(payload), std::move(done)});
    writeNext();
}

void MessageWriter::writeNext() {
    if (isWriting_) {
        return;
    }
    const bool isControl = !controls_.empty();
    buffers_.clear();
    if (isControl) {
        buffers_.push_back(net::buffer(controls_.front().frame));
    } else if (isStarted_ && !outgoing_.empty() && outgoing_.front().series) {
        startFrame();
        return;
    } else if (isStarted_) {
        gatherTexts();
    }
    if (buffers_.empty()) {
        return;
    }
    isWriting_ = true;
    net::async_write(socket_, buffers_,
                     [this, alive = owner_(), isControl](const error_code& error, std::size_t) {
                         didWrite(error, isControl);
                     });
}

void MessageWriter::gatherTexts() {
    std::size_t bytes = 0;
    for (const Unsent& next : outgoing_) {
        if (!next.text || texts_.size() == mostTextsPerWrite ||
            (!texts_.empty() && bytes + next.text->size() > mostBytesPerWrite)) {
            return;
        }
        auto& header = headers_[texts_.size()];
        const std::size_t headerSize = writeHeader(header, textOpcode, next.text->size());
        texts_.push_back(next.text);
        buffers_.emplace_back(header.data(), headerSize);
        buffers_.push_back(net::buffer(*next.text));
        bytes += next.text->size();
    }
}

void MessageWriter::didWrite(const error_code& error, bool wasControl) {
    const std::size_t count = texts_.size();
    texts_.clear();
    if (error) {
        writeFailed(error);
        return;
    }
    if (wasControl) {
        const Control sent = std::move(controls_.front());
        controls_.pop_front();
        sent.done();
    } else {
        completeTexts(count);
    }
    isWriting_ = false;
    writeNext();
}

void MessageWriter::writeFailed(const error_code& error) {
    isWriting_ = false;
    if (isStarted_) {
        failed_(error);
    }
    for (const Control& control : std::exchange(controls_, {})) {
        control.done();
    }
}

void MessageWriter::completeTexts(std::size_t count) {
    // The last completion may have ended the connection.
    for (std::size_t index = 0; index < count && isStarted_; ++index) {
        const Unsent sent = std::move(outgoing_.front());
        outgoing_.pop_front();
        queuedBytes_ -= sent.text->size() + bytesPerSend;
        if (sent.completion && !isAbandoned_) {
            sent.completion(std::nullopt);
        }
    }
}

// The texts of a series.

/// Of the first text that waits.
void MessageWriter::startFrame() {
    const Unsent& next = outgoing_.front();
    if (isAsking_) {
        return;
    }
    if (const SharedText text = next.series->atHand(next.first)) {
        startFrame(text);
    } else {
        ask(*next.series, next.first);
    }
}

void MessageWriter::startFrame(const SharedText& text) {
    const Unsent& next = outgoing_.front();
    frame_ = {.series = next.series, .index = next.first};
    frame_.headerSize = writeHeader(frame_.header, textOpcode, text->size());
    frame_.size = frame_.headerSize + text->size();
    isWriting_ = true;
    writeFrame(text);
}

void MessageWriter::goOnWithFrame() {
    if (const SharedText text = frame_.series->atHand(frame_.index)) {
        writeFrame(text);
    } else {
        ask(*frame_.series, frame_.index);
    }
}

/// Hands over what the socket takes at once; the text is let go before waiting for more.
void MessageWriter::writeFrame(const SharedText& text) {
    const std::size_t headerWritten = std::min(frame_.written, frame_.headerSize);
    const std::array<net::const_buffer, 2> rest{net::buffer(frame_.header.data(), frame_.headerSize) +
                                                    headerWritten,
                                                net::buffer(*text) + (frame_.written - headerWritten)};
    error_code error;
    frame_.written += socket_.write_some(rest, error);
    if (error && error != net::error::would_block && error != net::error::try_again) {
        frame_ = {};
        writeFailed(error);
    } else if (frame_.written == frame_.size) {
        frameHasLeft();
    } else {
        socket_.async_wait(PhoneSocket::wait_write, [this, alive = owner_()](const error_code& failure) {
            if (failure) {
                frame_ = {};
                writeFailed(failure);
            } else {
                goOnWithFrame();
            }
        });
    }
}

void MessageWriter::frameHasLeft() {
    frame_ = {};
    // What else is on the queue gets its turn before the next text.
    net::post(socket_.get_executor(), [this, alive = owner_()] {
        isWriting_ = false;
        writeNext();
    });
    if (isStarted_) {
        completeFirstOfSeries(std::nullopt);
    }
}

void MessageWriter::ask(TextSeries& series, std::uint64_t index) {
    isAsking_ = true;
    // A strong reference would keep both ends alive when the queue ends before the answer.
    series.make(index, [this, weak = std::weak_ptr<void>(owner_())](const SharedText& text, const auto& error) {
        if (const auto alive = weak.lock()) {
            isAsking_ = false;
            wasMade(text, error);
        }
    });
}

void MessageWriter::wasMade(const SharedText& text, const std::optional<NetworkError>& error) {
    if (frame_.series) {
        const bool isSame = text && frame_.headerSize + text->size() == frame_.size;
        if (isSame) {
            writeFrame(text);
        } else {
            // The far end could only take what follows for the rest of this text.
            frame_ = {};
            writeFailed(make_error_code(boost::system::errc::io_error));
        }
    } else if (isStarted_ && !text) {
        completeFirstOfSeries(error);
        writeNext();
    } else if (isStarted_ && !isWriting_ && controls_.empty()) {
        startFrame(text);
    }
}

void MessageWriter::completeFirstOfSeries(const std::optional<NetworkError>& error) {
    Unsent& first = outgoing_.front();
    const Completion completion = first.completion;
    ++first.first;
    if (--first.count == 0) {
        outgoing_.pop_front();
    }
    if (completion && !isAbandoned_) {
        completion(error);
    }
}

} // namespace velloway
