#pragma once

#include "platform/Network.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velloway::test {

/// The far end of one connection, as a test drives it. Its operations wait until they have had their effect.
class Peer {
public:
    virtual ~Peer() = default;
    virtual bool shakeHands() = 0;
    virtual void sendText(const std::string& text) = 0;
    virtual void sendBinary(const std::string& bytes) = 0;
    /// Absent when none comes.
    virtual std::optional<std::string> nextText() = 0;
    virtual void closeProperly() = 0;
    virtual void vanish() = 0;
    virtual bool seesEnd() = 0;
};

/// One implementation of the network, with the queue that it runs on.
class NetworkWorld {
public:
    virtual ~NetworkWorld() = default;
    virtual Network& network() = 0;
    virtual DispatchQueue& queue() = 0;
    /// Lets time pass until `condition` holds; false when it does not within a generous bound.
    virtual bool runUntil(const std::function<bool()>& condition) = 0;
    /// A port that was free a moment ago.
    virtual std::uint16_t freePort() = 0;
    virtual std::unique_ptr<Peer> dial(NetworkListener& listener, std::uint16_t port) = 0;
    /// How an endpoint of this world names itself.
    virtual std::string hostOfPeers() const = 0;
};

struct NetworkImplementation {
    const char* name;
    std::unique_ptr<NetworkWorld> (*make)();
};

/// What the cases of this program run over.
std::vector<NetworkImplementation> networkImplementations();

std::unique_ptr<NetworkWorld> makeFakeNetworkWorld();
std::unique_ptr<NetworkWorld> makeLinuxNetworkWorld();

} // namespace velloway::test
