#include "hosts/linux/network/LinuxNetwork.h"

#include "hosts/linux/network/LinuxListener.h"

#include <algorithm>

#include <unistd.h>

namespace velloway {

namespace {

std::size_t halfOfMemory() {
    const long pages = sysconf(_SC_PHYS_PAGES);
    const long pageSize = sysconf(_SC_PAGESIZE);
    const std::size_t half = pages > 0 && pageSize > 0 ? std::size_t(pages) * std::size_t(pageSize) / 2 : 0;
    return std::max(half, std::size_t{1} << 30);
}

} // namespace

LinuxNetwork::LinuxNetwork(AsioQueue& queue, const LinuxNetworkLimits& limits)
    : queue_(queue), limits_(limits) {
    if (limits_.queuedBytes == 0) {
        limits_.queuedBytes = halfOfMemory();
    }
}

bool LinuxNetwork::acceptsPort(std::uint16_t) const {
    return true;
}

std::shared_ptr<NetworkListener> LinuxNetwork::makeListener(const ListenerParameters& parameters,
                                                            NetworkError& error) {
    if (parameters.webSocketVersion != 13) {
        error = {.localizedDescription = "Only WebSocket version 13 is supported",
                 .description = "unsupported WebSocket version " + std::to_string(parameters.webSocketVersion)};
        return nullptr;
    }
    return std::make_shared<LinuxListener>(queue_, limits_, parameters);
}

} // namespace velloway
