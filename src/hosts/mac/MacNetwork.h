#pragma once

#include "platform/Network.h"

namespace velloway {

/// WebSockets by the Network framework. Everything must be started on a `MacDispatchQueue`.
class MacNetwork final : public Network {
public:
    bool acceptsPort(std::uint16_t port) const override;
    std::shared_ptr<NetworkListener> makeListener(const ListenerParameters& parameters,
                                                  NetworkError& error) override;
};

} // namespace velloway
