#include "hosts/network/RawPhone.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace velloway::test {

namespace {

void appendBigEndian(std::string& text, std::uint64_t value, int bytes) {
    for (int index = bytes - 1; index >= 0; --index) {
        text += static_cast<char>(value >> (8 * index));
    }
}

void appendLength(std::string& text, std::uint64_t length, const FrameForm& form) {
    const int mask = form.isMasked ? 0x80 : 0;
    if (form.lengthBytes == 8 || length > 0xFFFF) {
        text += static_cast<char>(mask | 127);
        appendBigEndian(text, length, 8);
    } else if (form.lengthBytes == 2 || length > 125) {
        text += static_cast<char>(mask | 126);
        appendBigEndian(text, length, 2);
    } else {
        text += static_cast<char>(mask | static_cast<int>(length));
    }
}

} // namespace

std::string frame(std::string_view payload, const FrameForm& form) {
    constexpr std::array<unsigned char, 4> key{0x37, 0xFA, 0x21, 0x3D};
    std::string text;
    text.reserve(payload.size() + 14);
    text += static_cast<char>((form.isFinal ? 0x80 : 0) | form.reservedBits << 4 | form.opcode);
    appendLength(text, form.claimedLength.value_or(payload.size()), form);
    if (!form.isMasked) {
        return text.append(payload);
    }
    text.append(reinterpret_cast<const char*>(key.data()), key.size());
    const std::size_t start = text.size();
    text.append(payload);
    for (std::size_t index = 0; index < payload.size(); ++index) {
        text[start + index] = static_cast<char>(text[start + index] ^ key[index % key.size()]);
    }
    return text;
}

int RawPhone::Frame::closeCode() const {
    if (payload.size() < 2) {
        return 1005;
    }
    return static_cast<unsigned char>(payload[0]) << 8 | static_cast<unsigned char>(payload[1]);
}

RawPhone::RawPhone() : socket_(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    if (socket_ < 0) {
        throw std::system_error(errno, std::system_category(), "socket");
    }
}

RawPhone::RawPhone(std::uint16_t port, const char* address) {
    const bool isSix = std::strchr(address, ':') != nullptr;
    socket_ = ::socket(isSix ? AF_INET6 : AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    connectTo(port, address);
}

void RawPhone::connect(std::uint16_t port) {
    connectTo(port, "127.0.0.1");
}

void RawPhone::connectTo(std::uint16_t port, const char* address) {
    sockaddr_storage storage{};
    socklen_t size = 0;
    if (std::strchr(address, ':')) {
        auto& six = reinterpret_cast<sockaddr_in6&>(storage);
        six.sin6_family = AF_INET6;
        six.sin6_port = htons(port);
        inet_pton(AF_INET6, address, &six.sin6_addr);
        size = sizeof six;
    } else {
        auto& four = reinterpret_cast<sockaddr_in&>(storage);
        four.sin_family = AF_INET;
        four.sin_port = htons(port);
        inet_pton(AF_INET, address, &four.sin_addr);
        size = sizeof four;
    }
    if (socket_ < 0 || ::connect(socket_, reinterpret_cast<sockaddr*>(&storage), size) != 0) {
        const int code = errno;
        ::close(std::exchange(socket_, -1));
        throw std::system_error(code, std::system_category(), "connect");
    }
    const int on = 1;
    setsockopt(socket_, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
}

RawPhone::RawPhone(RawPhone&& other) noexcept
    : socket_(std::exchange(other.socket_, -1)), pending_(std::move(other.pending_)) {}

RawPhone::~RawPhone() {
    if (socket_ >= 0) {
        ::close(socket_);
    }
}

std::string RawPhone::request(std::string_view extraFields) {
    std::string text = "GET / HTTP/1.1\r\nHost: computer\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
                       "Sec-WebSocket-Version: 13\r\nSec-WebSocket-Key: ";
    return text.append(key).append("\r\n").append(extraFields).append("\r\n");
}

bool RawPhone::shakeHands() {
    return write(request()) && readHead().starts_with("HTTP/1.1 101 ");
}

bool RawPhone::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

std::size_t RawPhone::writeWithoutWaiting(std::string_view bytes) {
    std::size_t written = 0;
    while (written < bytes.size()) {
        pollfd poll{socket_, POLLOUT, 0};
        if (::poll(&poll, 1, 300) <= 0) {
            break;
        }
        const ssize_t count =
            ::send(socket_, bytes.data() + written, bytes.size() - written, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count < 0) {
            break;
        }
        written += static_cast<std::size_t>(count);
    }
    return written;
}

std::string RawPhone::read() {
    if (!pending_.empty()) {
        return std::exchange(pending_, {});
    }
    pollfd poll{socket_, POLLIN, 0};
    if (::poll(&poll, 1, static_cast<int>(std::chrono::milliseconds(timeout).count())) <= 0) {
        return {};
    }
    std::string bytes(65536, '\0');
    const ssize_t count = ::recv(socket_, bytes.data(), bytes.size(), 0);
    bytes.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return bytes;
}

std::string RawPhone::readHead() {
    std::string head;
    for (;;) {
        const std::string more = read();
        if (more.empty()) {
            return head;
        }
        head += more;
        const std::size_t end = head.find("\r\n\r\n");
        if (end != std::string::npos) {
            pending_ = head.substr(end + 4);
            return head.substr(0, end + 4);
        }
    }
}

std::optional<RawPhone::Frame> RawPhone::readFrame() {
    std::string bytes;
    const auto have = [&](std::size_t count) {
        while (bytes.size() < count) {
            const std::string more = read();
            if (more.empty()) {
                return false;
            }
            bytes += more;
        }
        return true;
    };
    if (!have(2)) {
        return {};
    }
    const int form = bytes[1] & 0x7F;
    const std::size_t lengthBytes = form == 127 ? 8 : form == 126 ? 2 : 0;
    if (!have(2 + lengthBytes)) {
        return {};
    }
    std::size_t length = lengthBytes ? 0 : static_cast<std::size_t>(form);
    for (std::size_t index = 0; index < lengthBytes; ++index) {
        length = length << 8 | static_cast<unsigned char>(bytes[2 + index]);
    }
    const std::size_t start = 2 + lengthBytes;
    if (!have(start + length)) {
        return {};
    }
    pending_ = bytes.substr(start + length);
    return Frame{bytes[0] & 0x0F, bytes.substr(start, length)};
}

std::string RawPhone::nextText() {
    const auto next = readFrame();
    return next && next->opcode == 1 ? next->payload : "";
}

bool RawPhone::waitForEnd(std::chrono::milliseconds limit) {
    const auto until = std::chrono::steady_clock::now() + limit;
    std::string bytes(65536, '\0');
    for (;;) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(until - std::chrono::steady_clock::now());
        pollfd poll{socket_, POLLIN, 0};
        if (left.count() <= 0 || ::poll(&poll, 1, static_cast<int>(left.count())) <= 0) {
            return false;
        }
        if (::recv(socket_, bytes.data(), bytes.size(), 0) <= 0) {
            return true;
        }
    }
}

void RawPhone::reset() {
    const linger now{1, 0};
    setsockopt(socket_, SOL_SOCKET, SO_LINGER, &now, sizeof now);
    ::close(std::exchange(socket_, -1));
}

void RawPhone::endSending() {
    ::shutdown(socket_, SHUT_WR);
}

void RawPhone::setReceiveBuffer(int bytes) {
    setsockopt(socket_, SOL_SOCKET, SO_RCVBUF, &bytes, sizeof bytes);
}

std::string RawPhone::localDescription() const {
    sockaddr_storage storage{};
    socklen_t size = sizeof storage;
    getsockname(socket_, reinterpret_cast<sockaddr*>(&storage), &size);
    char host[NI_MAXHOST];
    char port[NI_MAXSERV];
    getnameinfo(reinterpret_cast<sockaddr*>(&storage), size, host, sizeof host, port, sizeof port,
                NI_NUMERICHOST | NI_NUMERICSERV);
    const bool isSix = storage.ss_family == AF_INET6;
    return (isSix ? "[" + std::string(host) + "]" : std::string(host)) + ":" + port;
}

} // namespace velloway::test
