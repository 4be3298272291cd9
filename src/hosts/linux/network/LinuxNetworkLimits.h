#pragma once

#include <chrono>
#include <cstddef>

namespace velloway {

/// What protects this computer from a peer that is slow, broken or hostile.
struct LinuxNetworkLimits {
    /// From the accepted connection to the end of the handshake, however slowly its bytes come. Afterwards
    /// there is no timeout: a phone may stay silent for days.
    std::chrono::milliseconds handshake{30'000};
    /// How long the far end has for its part of the closing handshake.
    std::chrono::milliseconds closing{2'000};
    /// How long accepting pauses when the system has no descriptor or memory left.
    std::chrono::milliseconds acceptPause{100};
    /// How many descriptors connections leave to the rest of the program, but at most a quarter of all: drawing
    /// on X11 waits for ever for one that it does not get. Connections beyond wait until others have ended.
    std::size_t spareDescriptors = 64;
    /// A longer message ends its connection with the close code 1009.
    std::size_t messageBytes = std::size_t{512} << 20;
    /// Texts waiting for a phone that reads slowly or not at all; one more ends the connection. The chunks of
    /// files do not count, because they are made when they leave. The only text that waits may be longer.
    std::size_t queuedBytes = std::size_t{64} << 20;
    /// Whether to listen on IPv6 too. A system without IPv6 is noticed without help.
    bool usesIPv6 = true;
};

} // namespace velloway
