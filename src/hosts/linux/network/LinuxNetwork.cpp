#include "hosts/linux/network/LinuxNetwork.h"

#include "hosts/linux/network/LinuxListener.h"

namespace velloway {

LinuxNetwork::LinuxNetwork(AsioQueue& queue, const LinuxNetworkLimits& limits)
    : queue_(queue), limits_(limits) {}

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
