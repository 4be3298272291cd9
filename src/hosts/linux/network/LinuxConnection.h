#pragma once

#include "hosts/linux/network/LinuxNetworkLimits.h"
#include "hosts/linux/network/QueueSession.h"
#include "platform/Network.h"

#include <memory>

namespace velloway {

class ConnectionSession;

/// One accepted socket, as a WebSocket.
///
/// The end is reported in this order: the outstanding receive completes with an error, then every waiting send
/// in the order of the calls, then the state handler is called. A far end that goes without a closing handshake
/// is noticed while a receive or a send is outstanding. `cancel` runs the closing handshake in the background,
/// for at most the closing time of the limits, after it has reported `cancelled`.
class LinuxConnection final : public NetworkConnection {
public:
    /// Takes the descriptor over. On the queue.
    LinuxConnection(AsioQueue& queue, const LinuxNetworkLimits& limits, int descriptor, bool isIPv6,
                    Endpoint endpoint);
    ~LinuxConnection() override;

    void setStateHandler(StateHandler handler) override;
    void start(DispatchQueue& queue) override;
    void cancel() override;
    Endpoint endpoint() const override;
    void receiveMessage(ReceiveCompletion completion) override;
    void send(SharedText text, std::string_view identifier, SendCompletion completion) override;
    void send(std::shared_ptr<TextSeries> series, std::uint64_t index, std::string_view identifier,
              SendCompletion completion) override;

private:
    SessionHandle<ConnectionSession> session_;
};

} // namespace velloway
