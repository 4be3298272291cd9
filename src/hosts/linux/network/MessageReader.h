#pragma once

#include "hosts/linux/network/FrameReader.h"
#include "hosts/linux/network/LinuxNetworkLimits.h"
#include "hosts/linux/network/PhoneSocket.h"
#include "platform/Network.h"

#include <boost/system/error_code.hpp>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

namespace velloway {

/// The receiving half of a connection: turns what the socket brings into messages, one for each receive. Reads
/// only while a receive is outstanding. On the queue.
class MessageReader {
public:
    using Completion = NetworkConnection::ReceiveCompletion;

    struct Events {
        /// To be answered with the same bytes; nothing more is read until `answered` is called.
        std::function<void(std::string_view payload, std::function<void()> answered)> ping;
        /// The far end has closed in the orderly way, with this number or none (0).
        std::function<void(std::uint16_t code)> closed;
        /// No more messages come. `closeCode` is what the far end should be sent, or 0.
        std::function<void(const boost::system::error_code& error, std::uint16_t closeCode)> failed;
    };

    /// `owner` returns what must stay alive while the socket is read. Completions are not called once
    /// `isAbandoned`.
    MessageReader(PhoneSocket& socket, boost::asio::io_context& loop, const LinuxNetworkLimits& limits,
                  std::function<std::shared_ptr<void>()> owner, const std::atomic<bool>& isAbandoned,
                  Events events);

    /// The handshake has succeeded: messages may come.
    void start();
    /// At most one receive may be outstanding.
    void receive(Completion completion);
    /// No further message is read. One that has come whole is delivered first; returns the receive that is
    /// still outstanding then.
    Completion stop();
    /// Releases the memory. No read may be under way.
    void clear();

private:
    void readMore();
    void didRead(const boost::system::error_code& error, std::size_t count);
    void handleLater();
    void handleFrames();
    bool handleNext();
    void deliver();
    void deliverAfterOthers();

    PhoneSocket& socket_;
    boost::asio::io_context& loop_;
    std::function<std::shared_ptr<void>()> owner_;
    const std::atomic<bool>& isAbandoned_;
    Events events_;
    FrameReader frames_;
    Completion receive_;
    bool isStarted_ = false;
    /// A read, a later turn or an answer is awaited, or frames are being handled: nothing else may begin.
    bool isBusy_ = false;
    /// A whole message that has not been delivered yet; it lies in `frames_`.
    std::optional<std::string_view> message_;
    /// In this turn of the event loop.
    std::size_t handledBytes_ = 0;
};

} // namespace velloway
