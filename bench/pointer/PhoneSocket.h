#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace velloway::bench {

/// A port on this computer that nobody uses at the moment.
std::uint16_t freePort();

/// A phone on loopback, as little of one as can be: it opens a WebSocket and writes text messages.
class PhoneSocket {
public:
    /// Waits until the server takes connections.
    explicit PhoneSocket(std::uint16_t port);
    ~PhoneSocket();
    PhoneSocket(const PhoneSocket&) = delete;
    PhoneSocket& operator=(const PhoneSocket&) = delete;

    /// Returns when the system has taken all bytes.
    void send(std::string_view message);

private:
    void writeAll(std::string_view bytes);
    void readHandshake();

    int socket_ = -1;
    std::string frame_;
};

} // namespace velloway::bench
