#include "LoadClient.h"

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace velloway::bench {

namespace {

constexpr std::string_view pingMark = "load-is-done";

[[noreturn]] void giveUp(const char* what) {
    std::perror(what);
    std::exit(1);
}

int connectTo(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<unsigned short>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    for (int attempt = 0; attempt < 500; ++attempt) {
        const int made = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (connect(made, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
            const int on = 1;
            setsockopt(made, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
            return made;
        }
        close(made);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    giveUp("connect");
}

} // namespace

void appendFrame(std::string& out, std::string_view payload, unsigned opcode) {
    constexpr std::array<char, 4> key{'\x9E', '\x37', '\x79', '\xB9'};
    const std::size_t size = payload.size();
    out += static_cast<char>(0x80 | opcode);
    if (size < 126) {
        out += static_cast<char>(0x80 | size);
    } else {
        const int bytes = size < 65536 ? 2 : 8;
        out += static_cast<char>(0x80 | (bytes == 2 ? 126 : 127));
        for (int index = bytes - 1; index >= 0; --index) {
            out += static_cast<char>(size >> (8 * index));
        }
    }
    out.append(key.data(), key.size());
    const std::size_t start = out.size();
    out.append(payload);
    for (std::size_t index = 0; index < size; ++index) {
        out[start + index] = static_cast<char>(out[start + index] ^ key[index & 3]);
    }
}

LoadClient::LoadClient(int port) : socket_(connectTo(port)) {}

LoadClient::~LoadClient() {
    close(socket_);
}

void LoadClient::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count <= 0) {
            giveUp("send");
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

std::size_t LoadClient::read(char* to, std::size_t room) {
    const ssize_t count = recv(socket_, to, room, 0);
    if (count <= 0) {
        giveUp("the far end ended early");
    }
    return static_cast<std::size_t>(count);
}

std::string LoadClient::read() {
    std::string bytes(4096, '\0');
    bytes.resize(read(bytes.data(), bytes.size()));
    return bytes;
}

void LoadClient::shakeHands() {
    write("GET / HTTP/1.1\r\nHost: bench\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
          "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Version: 13\r\n\r\n");
    // The welcome is the first thing that every receiver says.
    std::string answer;
    while (answer.find("\"connected\"") == std::string::npos) {
        answer += read();
    }
}

void LoadClient::waitUntilHandled() {
    std::string ping;
    appendFrame(ping, pingMark, 9);
    write(ping);
    std::string answer;
    while (answer.find(pingMark) == std::string::npos) {
        answer += read();
    }
}

void LoadClient::finish() {
    shutdown(socket_, SHUT_WR);
    char byte;
    while (recv(socket_, &byte, 1, 0) > 0) {
    }
}

} // namespace velloway::bench
