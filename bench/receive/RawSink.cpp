// The least that receiving a file can cost: bytes from one socket into a file. port, folder.

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int listenOn(int port) {
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    const int on = 1;
    setsockopt(listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<unsigned short>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        listen(listener, 4) != 0) {
        std::perror("raw_sink");
        std::exit(1);
    }
    return listener;
}

bool copyToFile(int from, int file) {
    std::vector<char> buffer(1 << 20);
    for (;;) {
        const ssize_t count = recv(from, buffer.data(), buffer.size(), 0);
        if (count <= 0) {
            return count == 0;
        }
        for (ssize_t at = 0; at < count;) {
            const ssize_t written = write(file, buffer.data() + at, static_cast<std::size_t>(count - at));
            if (written < 0) {
                return false;
            }
            at += written;
        }
    }
}

} // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        std::fprintf(stderr, "usage: raw_sink port folder\n");
        return 2;
    }
    const int listener = listenOn(std::atoi(arguments[1]));
    for (;;) {
        const int from = accept(listener, nullptr, nullptr);
        const std::string path = std::string(arguments[2]) + "/big.bin";
        const int file = open(path.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0644);
        if (from < 0 || file < 0 || !copyToFile(from, file)) {
            std::perror("raw_sink");
            return 1;
        }
        close(file);
        close(from);
    }
}
