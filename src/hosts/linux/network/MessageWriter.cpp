#include "hosts/linux/network/MessageWriter.h"

#include <boost/asio/buffer.hpp>
#include <boost/beast/websocket.hpp>

#include <algorithm>
#include <utility>

namespace velloway {

namespace net = boost::asio;
using boost::system::error_code;

namespace {

/// What an entry of the queue costs beside its text.
constexpr std::size_t bytesPerSend = 128;

} // namespace

MessageWriter::MessageWriter(PhoneStream& stream, std::size_t queuedBytes,
                             std::function<std::shared_ptr<void>()> owner, const std::atomic<bool>& isAbandoned,
                             Failed failed)
    : stream_(stream),
      maxQueuedBytes_(queuedBytes),
      owner_(std::move(owner)),
      isAbandoned_(isAbandoned),
      failed_(std::move(failed)) {}

void MessageWriter::start() {
    isStarted_ = true;
    if (!outgoing_.empty() && !isWriting_) {
        writeNext();
    }
}

bool MessageWriter::send(SharedText text, Completion completion) {
    const std::size_t size = text->size() + bytesPerSend;
    if (size > maxQueuedBytes_ - std::min(queuedBytes_, maxQueuedBytes_)) {
        isOverflowing_ = true;
    }
    if (isOverflowing_) {
        text = nullptr;
    } else {
        queuedBytes_ += size;
    }
    outgoing_.push_back({std::move(text), std::move(completion)});
    if (isStarted_ && !isWriting_) {
        writeNext();
    }
    return !isOverflowing_;
}

void MessageWriter::writeNext() {
    const SharedText text = outgoing_.front().text;
    if (!text) {
        return;
    }
    isWriting_ = true;
    stream_.async_write(net::buffer(*text),
                        [this, alive = owner_(), text](const error_code& error, std::size_t) {
                            if (isStarted_) {
                                didWrite(error);
                            }
                        });
}

void MessageWriter::didWrite(const error_code& error) {
    if (error) {
        failed_(error);
        return;
    }
    const Unsent sent = std::move(outgoing_.front());
    outgoing_.pop_front();
    queuedBytes_ -= sent.text->size() + bytesPerSend;
    if (sent.completion && !isAbandoned_) {
        sent.completion(std::nullopt);
    }
    isWriting_ = false;
    if (isStarted_ && !outgoing_.empty()) {
        writeNext();
    }
}

std::deque<MessageWriter::Unsent> MessageWriter::stop() {
    isStarted_ = false;
    return std::exchange(outgoing_, {});
}

} // namespace velloway
