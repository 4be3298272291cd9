#pragma once

#include "hosts/mac/MacActivity.h"
#include "platform/Network.h"

namespace velloway {

/// WebSockets by the Network framework. Everything must be started on a `MacDispatchQueue`.
class MacNetwork final : public Network {
public:
    /// `beginActivity` is called for each connection that becomes ready; what it returns is held until that
    /// connection has ended. On the queue.
    explicit MacNetwork(BeginActivity beginActivity) : beginActivity_(std::move(beginActivity)) {}

    bool acceptsPort(std::uint16_t port) const override;
    std::shared_ptr<NetworkListener> makeListener(const ListenerParameters& parameters,
                                                  NetworkError& error) override;

private:
    BeginActivity beginActivity_;
};

} // namespace velloway
