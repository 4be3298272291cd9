#include "hosts/linux/network/MessageReader.h"

#include "platform/Fatal.h"

#include <boost/asio/bind_executor.hpp>
#include <boost/asio/post.hpp>
#include <boost/beast/websocket.hpp>

#include <algorithm>
#include <string_view>
#include <utility>

namespace velloway {

namespace net = boost::asio;
namespace websocket = boost::beast::websocket;
using boost::system::error_code;

namespace {

/// Enough for a file chunk with its escapes; more is given back after the message.
constexpr std::size_t keptBufferBytes = std::size_t{4} << 20;
/// A message's memory grows with what has come, never with what a frame header claims.
constexpr std::size_t firstReadBytes = std::size_t{64} << 10;
/// Handling a message of this size takes long enough for others to be let go first.
constexpr std::size_t largeMessageBytes = std::size_t{128} << 10;

/// Whether valid text stops in the middle of a character.
bool endsInsideCharacter(std::string_view text) {
    const std::size_t reach = std::min<std::size_t>(text.size(), 3);
    for (std::size_t back = 1; back <= reach; ++back) {
        const auto byte = static_cast<unsigned char>(text[text.size() - back]);
        if ((byte & 0xC0) != 0x80) {
            const std::size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
            return length > back;
        }
    }
    return false;
}

} // namespace

MessageReader::MessageReader(PhoneStream& stream, net::io_context& loop, const LinuxNetworkLimits& limits,
                             std::function<std::shared_ptr<void>()> owner, const std::atomic<bool>& isAbandoned,
                             Failed failed)
    : stream_(stream),
      loop_(loop),
      owner_(std::move(owner)),
      isAbandoned_(isAbandoned),
      failed_(std::move(failed)),
      turn_(loop, owner_),
      buffer_(limits.messageBytes + firstReadBytes) {}

void MessageReader::start() {
    isStarted_ = true;
    if (receive_ && !isReading_) {
        readMore();
    }
}

void MessageReader::receive(Completion completion) {
    if (receive_) {
        fatal("LinuxConnection asked for a second block while one is outstanding");
    }
    receive_ = std::move(completion);
    if (isStarted_ && !isReading_ && !isDelivering_) {
        readMore();
    }
}

void MessageReader::readMore() {
    isReading_ = true;
    const std::size_t room = std::max({firstReadBytes, buffer_.size(), buffer_.capacity() - buffer_.size()});
    stream_.async_read_some(
        buffer_, room,
        net::bind_executor(TurnExecutor(turn_),
                           [this, alive = owner_()](const error_code& error, std::size_t count) {
                               isReading_ = false;
                               if (isStarted_) {
                                   didRead(error, count);
                               }
                           }));
}

void MessageReader::didRead(const error_code& error, std::size_t count) {
    if (error == websocket::error::buffer_overflow) {
        failed_(error, websocket::close_code::too_big);
    } else if (error) {
        failed_(error, std::nullopt);
    } else if (!stream_.is_message_done()) {
        readMore();
    } else if (count == 0 && stream_.got_text() && endsInsideCharacter(buffer_.text())) {
        // Beast checks the end of a text only when its last fragment has bytes.
        failed_(make_error_code(websocket::error::bad_frame_payload), websocket::close_code::bad_payload);
    } else if (buffer_.size() >= largeMessageBytes) {
        deliverAfterOthers();
    } else {
        deliver();
    }
}

void MessageReader::deliver() {
    handOver();
    if (receive_ && isStarted_) {
        readMore();
    }
}

void MessageReader::handOver() {
    const auto completion = std::exchange(receive_, nullptr);
    isDelivering_ = true;
    if (!isAbandoned_) {
        completion({.bytes = buffer_.text(),
                    .readableAfter = buffer_.size() ? ReceiveBuffer::readableAfter : 0,
                    .hasWebSocketMetadata = true,
                    .isComplete = true});
    }
    isDelivering_ = false;
    buffer_.clear(keptBufferBytes);
}

/// What has come on other connections meanwhile is found at the end of this turn of the event loop and handled
/// in the next; the large message is behind it. A pointer move so waits for one large message at most.
void MessageReader::deliverAfterOthers() {
    isDeliveryDue_ = true;
    net::post(loop_, [this, alive = owner_()] {
        net::post(loop_, [this, alive] {
            if (std::exchange(isDeliveryDue_, false)) {
                deliver();
            }
        });
    });
}

MessageReader::Completion MessageReader::stop() {
    if (std::exchange(isDeliveryDue_, false)) {
        handOver();
    }
    isStarted_ = false;
    return std::exchange(receive_, nullptr);
}

void MessageReader::clear() {
    isStarted_ = false;
    turn_.clear();
    buffer_.clear(0);
}

} // namespace velloway
