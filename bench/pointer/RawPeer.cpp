#include "RawPeer.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <utility>

namespace velloway::bench {

namespace {

constexpr std::size_t bufferBytes = std::size_t{1} << 20;
constexpr std::size_t mostFileBytes = std::size_t{256} << 20;

void orGiveUp(bool isDone, const char* what) {
    if (!isDone) {
        std::perror(what);
        std::exit(1);
    }
}

int listenOn(std::uint16_t port) {
    const int listener = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    orGiveUp(::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
                 ::listen(listener, 4) == 0,
             "listen");
    return listener;
}

/// Takes whatever is asked for as a handshake that succeeds.
void shakeHands(int socket) {
    std::string request;
    char byte = 0;
    while (!request.ends_with("\r\n\r\n") && ::read(socket, &byte, 1) == 1) {
        request.push_back(byte);
    }
    constexpr std::string_view answer = "HTTP/1.1 101 Switching Protocols\r\n\r\n";
    orGiveUp(::write(socket, answer.data(), answer.size()) == static_cast<ssize_t>(answer.size()), "handshake");
}

} // namespace

RawPeer::RawPeer(std::uint16_t port, std::size_t moveBytes, std::filesystem::path file, MoveTimes& times)
    : moveBytes_(moveBytes),
      file_(std::move(file)),
      times_(times),
      listener_(listenOn(port)),
      moves_(::eventfd(0, 0)),
      noting_([this] { noteMoves(); }),
      accepting_([this] { accept(); }) {}

RawPeer::~RawPeer() {
    isEnding_ = true;
    ::shutdown(listener_, SHUT_RDWR);
    accepting_.join();
    reading_.clear();
    wake(1);
    noting_.join();
    ::close(listener_);
    ::close(moves_);
}

void RawPeer::accept() {
    for (int socket = 0; (socket = ::accept(listener_, nullptr, nullptr)) >= 0;) {
        shakeHands(socket);
        reading_.emplace_back([this, socket] { read(socket); });
    }
}

void RawPeer::read(int socket) {
    std::vector<char> buffer(bufferBytes);
    std::size_t bytes = 0;
    for (ssize_t count = 0; (count = ::read(socket, buffer.data(), buffer.size())) > 0;) {
        if (bytes == 0 && static_cast<std::size_t>(count) % moveBytes_ != 0) {
            copyToFile(socket, buffer);
            break;
        }
        bytes += static_cast<std::size_t>(count);
        wake(bytes / moveBytes_);
        bytes %= moveBytes_;
    }
    ::close(socket);
}

/// What the buffer holds already does not count.
void RawPeer::copyToFile(int socket, std::vector<char>& buffer) const {
    const int file = ::open(file_.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
    std::size_t size = 0;
    for (ssize_t count = 0; (count = ::read(socket, buffer.data(), buffer.size())) > 0;) {
        orGiveUp(::write(file, buffer.data(), static_cast<std::size_t>(count)) == count, "write");
        size += static_cast<std::size_t>(count);
        if (size > mostFileBytes) {
            size = 0;
            orGiveUp(::ftruncate(file, 0) == 0 && ::lseek(file, 0, SEEK_SET) == 0, "truncate");
        }
    }
    ::close(file);
}

void RawPeer::wake(std::size_t moves) const {
    const std::uint64_t count = moves;
    orGiveUp(moves == 0 || ::write(moves_, &count, sizeof count) == sizeof count, "eventfd");
}

void RawPeer::noteMoves() {
    for (std::uint64_t count = 0; ::read(moves_, &count, sizeof count) == sizeof count && !isEnding_;) {
        for (; count > 0; --count) {
            times_.note();
        }
    }
}

} // namespace velloway::bench
