#pragma once

#include "hosts/linux/network/LinuxNetworkLimits.h"
#include "hosts/linux/network/QueueSession.h"
#include "platform/Network.h"

#include <cstdint>
#include <memory>

namespace velloway {

/// Listens on all interfaces, for IPv6 and IPv4 through one socket where the system has both.
///
/// A port is given back on the queue, in the order of the calls: a listener that is started after another one
/// was cancelled can have the same port.
class LinuxListener final : public NetworkListener {
public:
    LinuxListener(AsioQueue& queue, const LinuxNetworkLimits& limits, const ListenerParameters& parameters);
    ~LinuxListener() override;

    void setStateHandler(StateHandler handler) override;
    void setNewConnectionHandler(NewConnectionHandler handler) override;
    void start(DispatchQueue& queue) override;
    void cancel() override;

    /// The port that the system gave when 0 was asked for; 0 before the state `ready`. Any thread.
    std::uint16_t boundPort() const;

private:
    class Session;
    SessionHandle<Session> session_;
};

} // namespace velloway
