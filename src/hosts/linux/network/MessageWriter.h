#pragma once

#include "hosts/linux/network/PhoneSocket.h"
#include "platform/Network.h"

#include <boost/system/error_code.hpp>

#include <atomic>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>

namespace velloway {

/// The sending half of a connection: texts leave in the order of the calls. On the queue.
class MessageWriter {
public:
    using Completion = NetworkConnection::SendCompletion;
    using Failed = std::function<void(const boost::system::error_code& error)>;

    /// What was not sent.
    struct Unsent {
        /// Null when the text was refused because too much waits.
        SharedText text;
        Completion completion;
    };

    /// `owner` returns what must stay alive while a text is written. Completions are not called once
    /// `isAbandoned`.
    MessageWriter(PhoneStream& stream, std::size_t queuedBytes, std::function<std::shared_ptr<void>()> owner,
                  const std::atomic<bool>& isAbandoned, Failed failed);

    /// The handshake has succeeded: texts may leave.
    void start();
    /// Returns false when more waits than may; what waits is kept, this text and all later ones are not.
    bool send(SharedText text, Completion completion);
    /// Sends nothing more.
    std::deque<Unsent> stop();

private:
    void writeNext();
    void didWrite(const boost::system::error_code& error);

    PhoneStream& stream_;
    const std::size_t maxQueuedBytes_;
    std::function<std::shared_ptr<void>()> owner_;
    const std::atomic<bool>& isAbandoned_;
    Failed failed_;
    std::deque<Unsent> outgoing_;
    std::size_t queuedBytes_ = 0;
    bool isStarted_ = false;
    bool isWriting_ = false;
    bool isOverflowing_ = false;
};

} // namespace velloway
