// A WebSocket server on our network layer that answers every message with itself. Prints its port, and ends
// when standard input does.

#include "hosts/network/EchoHost.h"

#include <cstdio>

int main() {
    const velloway::test::EchoHost host;
    std::printf("%u\n", host.port);
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
}
