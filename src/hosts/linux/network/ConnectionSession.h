#pragma once

#include "hosts/linux/network/MessageReader.h"
#include "hosts/linux/network/MessageWriter.h"
#include "hosts/linux/network/QueueSession.h"

#include <boost/asio/steady_timer.hpp>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace velloway {

struct HandshakeResult;

/// The life of one accepted socket: the handshake, the two halves, and the end. On the queue.
class ConnectionSession final : public QueueSession, public std::enable_shared_from_this<ConnectionSession> {
public:
    ConnectionSession(AsioQueue& madeOn, const LinuxNetworkLimits& limits, int descriptor, bool isIPv6,
                      Endpoint peer);
    ~ConnectionSession() { leaveQueue(); }

    void start() override;
    void cancel() override;
    void abandon() override;
    void queueEnds() override;
    void receive(NetworkConnection::ReceiveCompletion completion);
    void send(SharedText text, NetworkConnection::SendCompletion completion);
    void send(std::shared_ptr<TextSeries> series, std::uint64_t index,
              NetworkConnection::SendCompletion completion);

    const Endpoint endpoint;
    NetworkConnection::StateHandler stateHandler;

private:
    enum class Phase { setup, preparing, ready, ended };

    void handshakeEnded(const HandshakeResult& result);
    void readerEnded(const boost::system::error_code& error, std::uint16_t code, bool isToBeClosed);

    void refuse(NetworkConnection::SendCompletion completion);
    void failFromFullQueue();
    void fail(const boost::system::error_code& error);
    void end(ConnectionState state, const NetworkError& error);
    void closeWith(std::uint16_t code);
    void closeSocket();
    void closeAfter(std::chrono::milliseconds limit);
    void linger();
    void discardInput();
    void report(ConnectionState state);

    LinuxNetworkLimits limits_;
    Phase phase_ = Phase::setup;
    // Both live as long as the queue, and so do the halves.
    std::optional<PhoneSocket> socket_;
    std::optional<boost::asio::steady_timer> timer_;
    MessageReader reader_;
    MessageWriter writer_;
    std::vector<char> discarded_;
};

} // namespace velloway
