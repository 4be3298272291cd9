#pragma once

#include "hosts/linux/network/LinuxNetworkLimits.h"
#include "hosts/linux/network/PhoneSocket.h"
#include "hosts/linux/network/ReceiveBuffer.h"
#include "hosts/linux/network/TurnExecutor.h"
#include "platform/Network.h"

#include <boost/beast/websocket/rfc6455.hpp>
#include <boost/system/error_code.hpp>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

namespace velloway {

/// The receiving half of a connection: turns what the socket brings into messages, one for each receive. On the
/// queue.
class MessageReader {
public:
    using Completion = NetworkConnection::ReceiveCompletion;
    /// No more messages come. `closeCode` is what the far end should be sent, if anything.
    using Failed = std::function<void(const boost::system::error_code& error,
                                      std::optional<boost::beast::websocket::close_code> closeCode)>;

    /// `owner` returns what must stay alive while the socket is read; null ends the reading. Completions are
    /// not called once `isAbandoned`.
    MessageReader(PhoneStream& stream, boost::asio::io_context& loop, const LinuxNetworkLimits& limits,
                  std::function<std::shared_ptr<void>()> owner, const std::atomic<bool>& isAbandoned,
                  Failed failed);

    /// The handshake has succeeded: messages may come.
    void start();
    /// At most one receive may be outstanding.
    void receive(Completion completion);
    /// No further message is read. One that has come whole is delivered first; returns the receive that is
    /// still outstanding then.
    Completion stop();
    /// Releases the buffer and every handler.
    void clear();

private:
    void readMore();
    void didRead(const boost::system::error_code& error, std::size_t count);
    void deliver();
    void handOver();
    void deliverAfterOthers();

    PhoneStream& stream_;
    boost::asio::io_context& loop_;
    std::function<std::shared_ptr<void>()> owner_;
    const std::atomic<bool>& isAbandoned_;
    Failed failed_;
    Turn turn_;
    ReceiveBuffer buffer_;
    Completion receive_;
    bool isStarted_ = false;
    bool isReading_ = false;
    bool isDelivering_ = false;
    /// A whole message waits in the buffer.
    bool isDeliveryDue_ = false;
};

} // namespace velloway
