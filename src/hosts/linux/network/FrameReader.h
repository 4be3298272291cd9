#pragma once

#include "hosts/linux/network/ReceiveBuffer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

namespace velloway {

/// The numbers by which WebSocket frames are closed, as far as this program sends them itself.
namespace closeCode {
inline constexpr std::uint16_t goingAway = 1001;
inline constexpr std::uint16_t protocolError = 1002;
inline constexpr std::uint16_t badText = 1007;
inline constexpr std::uint16_t tooBig = 1009;
} // namespace closeCode

/// Turns the bytes of a WebSocket client into messages: unmasks, joins fragments, checks the text as it comes,
/// and notices every breach of the protocol. No I/O, no thread of its own.
///
/// Bytes go into the place that `prepare` returns, followed by `commit`; then `next` is called until it returns
/// `incomplete`. Messages are joined and unmasked in place, so nothing is copied unless a message comes in
/// fragments or is still incomplete at the end of the buffer. Memory grows with the bytes that have come, never
/// with what a frame header claims.
class FrameReader {
public:
    enum class Kind {
        /// More bytes are needed.
        incomplete,
        /// A whole text or binary message.
        message,
        /// A ping with its payload, which is to be answered.
        ping,
        /// The far end closes; `code` is what it said, or 0.
        close,
        /// The far end has broken the protocol and is to be sent `code`. No more frames can be read.
        failure
    };

    struct Event {
        Kind kind = Kind::incomplete;
        /// Valid until the next call of any operation. At least `ReceiveBuffer::readableAfter` bytes after it
        /// may be read.
        std::string_view bytes;
        std::uint16_t code = 0;
    };

    explicit FrameReader(std::size_t maxMessageBytes);

    /// Where the next bytes from the socket go; never empty. Throws `std::length_error` when there is no
    /// memory.
    std::span<char> prepare();
    void commit(std::size_t count);

    Event next();

    /// Directly after a message: keeps its bytes where they are for as long as what is returned lives. Null
    /// when there is no memory for that.
    std::shared_ptr<const void> keepMessage();

    /// Whether bytes have come that no event has covered yet.
    bool hasBytes() const { return position_ < buffer_.size(); }
    /// Releases all memory. Nothing can be read afterwards.
    void clear();

private:
    enum Opcode : std::uint8_t { continuation = 0, text = 1, binary = 2, closing = 8, ping = 9, pong = 10 };

    struct Header {
        Opcode opcode = continuation;
        bool isFinal = false;
        std::uint64_t length = 0;
        std::size_t size = 0;
        std::array<char, 4> mask{};
    };
    enum class Found { incomplete, header, breach };

    void dropMessage();
    void countSmall(std::size_t messageBytes);
    void closeGap();
    Found parseHeader(Header& header) const;
    Event startFrame();
    Event control(const Header& header);
    static Event closeEvent(std::string_view payload);
    std::uint16_t beginData(const Header& header);
    bool takePayload();
    bool checkText();
    Event failure(std::uint16_t code);

    const std::size_t maxMessageBytes_;
    ReceiveBuffer buffer_;
    /// Where the bytes begin that have not been looked at yet.
    std::size_t position_ = 0;
    /// The message so far, unmasked.
    std::size_t messageStart_ = 0;
    std::size_t messageEnd_ = 0;
    std::uint64_t smallInARow_ = 0;
    /// How far it is known to be text.
    std::size_t checkedEnd_ = 0;
    bool isInMessage_ = false;
    bool isText_ = false;
    bool isDelivered_ = false;
    /// A close or a failure has been returned.
    bool hasEnded_ = false;

    // The data frame whose payload comes now.
    bool isInFrame_ = false;
    bool isFinal_ = false;
    std::uint64_t remaining_ = 0;
    std::array<char, 4> mask_{};
};

} // namespace velloway
