#include "PhoneSocket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <thread>

namespace velloway::bench {

namespace {

[[noreturn]] void giveUp(const char* what) {
    std::cerr << what << '\n';
    std::exit(1);
}

sockaddr_in loopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

} // namespace

std::uint16_t freePort() {
    const int socket = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = loopback(0);
    socklen_t size = sizeof address;
    if (::bind(socket, reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        ::getsockname(socket, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        giveUp("no free port");
    }
    ::close(socket);
    return ntohs(address.sin_port);
}

PhoneSocket::PhoneSocket(std::uint16_t port) {
    const sockaddr_in address = loopback(port);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (true) {
        socket_ = ::socket(AF_INET, SOCK_STREAM, 0);
        if (::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
            break;
        }
        ::close(socket_);
        if (std::chrono::steady_clock::now() > deadline) {
            giveUp("the server takes no connection");
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    const int on = 1;
    ::setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    writeAll("GET / HTTP/1.1\r\nHost: localhost\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
             "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n\r\n");
    readHandshake();
}

PhoneSocket::~PhoneSocket() {
    ::close(socket_);
}

void PhoneSocket::readHandshake() {
    std::string answer;
    char byte = 0;
    while (!answer.ends_with("\r\n\r\n")) {
        if (::read(socket_, &byte, 1) != 1) {
            giveUp("no handshake");
        }
        answer.push_back(byte);
    }
    if (!answer.starts_with("HTTP/1.1 101")) {
        giveUp("the handshake was refused");
    }
}

void PhoneSocket::send(std::string_view message) {
    frame_.assign(1, '\x81');
    const auto putLength = [this, &message](int bytes) {
        for (int shift = 8 * (bytes - 1); shift >= 0; shift -= 8) {
            frame_.push_back(static_cast<char>(message.size() >> shift));
        }
    };
    constexpr char masked = '\x80';
    if (message.size() < 126) {
        frame_.push_back(static_cast<char>(masked | static_cast<char>(message.size())));
    } else if (message.size() < 65536) {
        frame_.push_back(static_cast<char>(masked | 126));
        putLength(2);
    } else {
        frame_.push_back(static_cast<char>(masked | 127));
        putLength(8);
    }
    // A mask of zeros leaves the text as it is.
    frame_.append(4, '\0');
    frame_.append(message);
    writeAll(frame_);
}

void PhoneSocket::writeAll(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (written <= 0) {
            giveUp("the connection broke");
        }
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

} // namespace velloway::bench
