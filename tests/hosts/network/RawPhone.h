#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace velloway::test {

/// How one frame of a client deviates from the rules, if it does.
struct FrameForm {
    int opcode = 1;
    bool isFinal = true;
    int reservedBits = 0;
    bool isMasked = true;
    /// Claimed instead of the true length.
    std::optional<std::uint64_t> claimedLength;
    /// 0: the shortest form; 2 or 8: that many bytes of length.
    int lengthBytes = 0;
};

std::string frame(std::string_view payload, const FrameForm& form = {});

/// A client that is nothing but a socket, so that it can break every rule. Reading waits, with a bound.
class RawPhone {
public:
    struct Frame {
        int opcode = 0;
        std::string payload;
        /// Of a close frame; 1005 when it carries none.
        int closeCode() const;
    };

    static constexpr std::chrono::seconds timeout{10};
    static constexpr const char* key = "dGhlIHNhbXBsZSBub25jZQ==";

    /// Connects to this computer; throws when that fails.
    explicit RawPhone(std::uint16_t port, const char* address = "127.0.0.1");
    /// Takes a descriptor now, for a later `connect` over IPv4.
    RawPhone();
    void connect(std::uint16_t port);
    ~RawPhone();
    RawPhone(RawPhone&& other) noexcept;
    RawPhone& operator=(RawPhone&&) = delete;

    static std::string request(std::string_view extraFields = "");

    /// Sends a proper request and reads the answer; whether it was 101.
    bool shakeHands();

    /// False when the far end has gone.
    bool write(std::string_view bytes);
    /// Writes until the far end takes no more; how many bytes that were.
    std::size_t writeWithoutWaiting(std::string_view bytes);
    /// The next bytes; empty at the end of the connection, and when `timeout` is over.
    std::string read();
    /// The head of the answer to a request, with the empty line.
    std::string readHead();
    /// Absent at the end of the connection.
    std::optional<Frame> readFrame();
    /// Reads what still comes; whether the far end ended the connection in time.
    bool waitForEnd(std::chrono::milliseconds limit = timeout);

    bool sendText(std::string_view text) { return write(frame(text)); }
    /// The next text; empty when something else comes.
    std::string nextText();

    /// Closes so that the far end sees a reset and this side keeps no TIME_WAIT.
    void reset();
    void endSending();
    void setReceiveBuffer(int bytes);
    std::string localDescription() const;

private:
    void connectTo(std::uint16_t port, const char* address);

    int socket_ = -1;
    std::string pending_;
};

} // namespace velloway::test
