#include "server/ReceiveLoop.h"

#include "server/MemoryReturn.h"
#include "server/MessageDispatch.h"

#include <string_view>
#include <utility>

namespace velloway {

namespace {

constexpr std::string_view area = "[WebSocketServer] ";

} // namespace

ReceiveLoop::ReceiveLoop(Targets targets, std::shared_ptr<NetworkConnection> connection)
    : to_(std::move(targets)), connection_(std::move(connection)) {}

void ReceiveLoop::start() {
    backlog_->setOnLess([weak = weak_from_this()] {
        if (const auto self = weak.lock()) {
            self->filesProgressed();
        }
    });
    receive();
}

void ReceiveLoop::receive() {
    connection_->receiveMessage([self = shared_from_this()](const ReceivedContent& content) {
        if (const auto owner = self->to_.owner.lock()) {
            self->received(content);
        }
    });
}

void ReceiveLoop::received(const ReceivedContent& content) {
    const bool isWhole = !blocks_ && content.isComplete && !content.error;
    if (content.bytes && !isWhole) {
        if (!blocks_) {
            blocks_.emplace();
        }
        blocks_->append(*content.bytes);
    }
    if (content.error) {
        to_.log.line({area, "Receive error from ", connection_->endpoint().description, ": ",
                      content.error->description});
        blocks_.reset();
        return;
    }
    if (isWhole) {
        // A message that came in one block is handled where it lies.
        receivedMessage(content.bytes.value_or(std::string_view()), content, content.readableAfter,
                        content.keep);
    } else if (content.isComplete) {
        const auto message = std::exchange(blocks_, std::nullopt);
        receivedMessage(message ? std::string_view(*message) : std::string_view(), content, 0, nullptr);
    }
    goOn();
}

void ReceiveLoop::receivedMessage(std::string_view message, const ReceivedContent& content,
                                  std::size_t readableAfter, const MessageDispatch::Keep& keep) {
    if (message.empty()) {
        return;
    }
    to_.log.line({area, "Received complete message of ", std::to_string(message.size()), " bytes from ",
                  connection_->endpoint().description});
    if (content.hasWebSocketMetadata && !to_.dispatch.handle(message, readableAfter, backlog_, keep)) {
        waiting_.emplace(message);
    }
    to_.memory.handled(message.size());
}

/// Asks for the next message once this one is handled and what came for files leaves room.
void ReceiveLoop::goOn() {
    isPaused_ = waiting_ || backlog_->isFull();
    if (!isPaused_ && !hasEnded_) {
        receive();
    }
}

void ReceiveLoop::filesProgressed() {
    const auto owner = to_.owner.lock();
    if (!owner || !isPaused_) {
        return;
    }
    if (waiting_ && backlog_->isEmpty()) {
        handleWaiting(backlog_);
    }
    goOn();
}

void ReceiveLoop::handleWaiting(const std::shared_ptr<FileBacklog>& backlog) {
    const auto message = std::exchange(waiting_, std::nullopt);
    to_.dispatch.handle(*message, 0, backlog);
}

void ReceiveLoop::end() {
    hasEnded_ = true;
    blocks_.reset();
    if (waiting_) {
        handleWaiting(nullptr);
    }
}

} // namespace velloway
