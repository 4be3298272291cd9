#include "hosts/linux/network/MessageReader.h"

#include "platform/Fatal.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <boost/beast/websocket/error.hpp>

#include <memory>
#include <span>
#include <stdexcept>
#include <utility>

namespace velloway {

namespace net = boost::asio;
using boost::system::error_code;
using Problem = boost::beast::websocket::error;

namespace {

/// Handling a message of this size takes long enough for others to be let go first.
constexpr std::size_t largeMessageBytes = std::size_t{128} << 10;
/// So much may be handled before others get their turn.
constexpr int mostFramesPerTurn = 256;
constexpr std::size_t mostBytesPerTurn = largeMessageBytes;

error_code errorOf(std::uint16_t code) {
    switch (code) {
    case closeCode::tooBig:
        return make_error_code(Problem::message_too_big);
    case closeCode::badText:
        return make_error_code(Problem::bad_frame_payload);
    default:
        return make_error_code(Problem::bad_opcode);
    }
}

} // namespace

MessageReader::MessageReader(PhoneSocket& socket, net::io_context& loop, const LinuxNetworkLimits& limits,
                             std::function<std::shared_ptr<void>()> owner, const std::atomic<bool>& isAbandoned,
                             Events events)
    : socket_(socket),
      loop_(loop),
      owner_(std::move(owner)),
      isAbandoned_(isAbandoned),
      events_(std::move(events)),
      frames_(limits.messageBytes) {}

void MessageReader::start() {
    isStarted_ = true;
    if (receive_) {
        handleLater();
    }
}

void MessageReader::receive(Completion completion) {
    if (receive_) {
        fatal("LinuxConnection asked for a second block while one is outstanding");
    }
    receive_ = std::move(completion);
    if (isStarted_ && !isBusy_) {
        handleLater();
    }
}

MessageReader::Completion MessageReader::stop() {
    if (message_) {
        deliver();
    }
    isStarted_ = false;
    return std::exchange(receive_, nullptr);
}

void MessageReader::clear() {
    frames_.clear();
}

void MessageReader::readMore() {
    std::span<char> place;
    try {
        place = frames_.prepare();
    } catch (const std::length_error&) {
        events_.failed(make_error_code(Problem::buffer_overflow), closeCode::tooBig);
        return;
    }
    isBusy_ = true;
    socket_.async_read_some(net::buffer(place.data(), place.size()),
                            [this, alive = owner_()](const error_code& error, std::size_t count) {
                                isBusy_ = false;
                                if (isStarted_) {
                                    didRead(error, count);
                                }
                            });
}

void MessageReader::didRead(const error_code& error, std::size_t count) {
    if (error) {
        events_.failed(error, 0);
        return;
    }
    frames_.commit(count);
    handleFrames();
}

void MessageReader::handleLater() {
    isBusy_ = true;
    net::post(loop_, [this, alive = owner_()] {
        isBusy_ = false;
        handleFrames();
    });
}

void MessageReader::handleFrames() {
    handledBytes_ = 0;
    for (int count = 0; isStarted_ && receive_ && !isBusy_; ++count) {
        if (count == mostFramesPerTurn || handledBytes_ >= mostBytesPerTurn) {
            handleLater();
        } else if (!handleNext()) {
            return;
        }
    }
}

/// Returns whether the next frame can be handled at once.
bool MessageReader::handleNext() {
    const FrameReader::Event event = frames_.next();
    switch (event.kind) {
    case FrameReader::Kind::incomplete:
        readMore();
        return false;
    case FrameReader::Kind::message:
        message_ = event.bytes;
        if (event.bytes.size() >= largeMessageBytes) {
            deliverAfterOthers();
            return false;
        }
        deliver();
        return true;
    case FrameReader::Kind::ping:
        isBusy_ = true;
        events_.ping(event.bytes, [this, alive = owner_()] { handleLater(); });
        return false;
    case FrameReader::Kind::close:
        events_.closed(event.code);
        return false;
    case FrameReader::Kind::failure:
        events_.failed(errorOf(event.code), event.code);
        return false;
    }
    return false;
}

void MessageReader::deliver() {
    const std::string_view message = *std::exchange(message_, std::nullopt);
    const auto completion = std::exchange(receive_, nullptr);
    handledBytes_ += message.size();
    isBusy_ = true;
    if (!isAbandoned_) {
        // Whoever keeps the message may be done with it on another thread before the completion is.
        std::shared_ptr<const void> kept;
        completion({.bytes = message,
                    .readableAfter = ReceiveBuffer::readableAfter,
                    .hasWebSocketMetadata = true,
                    .isComplete = true,
                    .keep = [&] { return kept ? kept : kept = frames_.keepMessage(); }});
    }
    isBusy_ = false;
}

/// What has come on other connections meanwhile is found at the end of this turn of the event loop and handled
/// in the next; the large message is behind it. So a pointer move waits for one large message at most.
void MessageReader::deliverAfterOthers() {
    isBusy_ = true;
    net::post(loop_, [this, alive = owner_()] {
        net::post(loop_, [this, alive] {
            if (message_) {
                deliver();
                handleFrames();
            }
        });
    });
}

} // namespace velloway
