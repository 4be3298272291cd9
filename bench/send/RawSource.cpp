// The least that sending a file can cost: bytes from a file into each socket. port, folder.
// Sends the file that each line of standard input names to all connections; ends when standard input ends.

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

[[noreturn]] void giveUp(const char* what) {
    std::perror(what);
    std::exit(1);
}

int listenOn(int port) {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0);
    const int on = 1;
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<unsigned short>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener, 16) != 0) {
        giveUp("raw_source");
    }
    return listener;
}

void writeAll(int to, const char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t written = write(to, bytes, size);
        if (written < 0) {
            giveUp("write");
        }
        bytes += written;
        size -= static_cast<std::size_t>(written);
    }
}

void sendFile(const std::string& path, const std::vector<int>& connections) {
    const int file = open(path.c_str(), O_RDONLY);
    std::vector<char> buffer(1 << 20);
    ssize_t count;
    while ((count = read(file, buffer.data(), buffer.size())) > 0) {
        for (const int connection : connections) {
            writeAll(connection, buffer.data(), static_cast<std::size_t>(count));
        }
    }
    if (count < 0) {
        giveUp(path.c_str());
    }
    close(file);
}

} // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        std::fprintf(stderr, "usage: raw_source port folder\n");
        return 2;
    }
    const int listener = listenOn(std::atoi(arguments[1]));
    std::vector<int> connections;
    for (std::string path; std::getline(std::cin, path);) {
        // Whoever wants the file has connected before it is named.
        for (int taken; (taken = accept(listener, nullptr, nullptr)) >= 0;) {
            connections.push_back(taken);
        }
        sendFile(path, connections);
    }
}
