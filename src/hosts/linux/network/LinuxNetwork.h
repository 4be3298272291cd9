#pragma once

#include "hosts/linux/network/AsioQueue.h"
#include "hosts/linux/network/LinuxNetworkLimits.h"
#include "platform/Network.h"

#include <cstdint>
#include <memory>

namespace velloway {

/// WebSockets over TCP. Listeners and connections of it must be started on the queue that it was made with,
/// and may outlive that queue, though without a callback then.
///
/// Every ping is answered, whatever the parameters say. Only version 13 is spoken.
class LinuxNetwork final : public Network {
public:
    explicit LinuxNetwork(AsioQueue& queue, const LinuxNetworkLimits& limits = {});

    bool acceptsPort(std::uint16_t port) const override;
    std::shared_ptr<NetworkListener> makeListener(const ListenerParameters& parameters,
                                                  NetworkError& error) override;

private:
    AsioQueue& queue_;
    LinuxNetworkLimits limits_;
};

} // namespace velloway
