#pragma once

#include "features/FileBacklog.h"
#include "platform/Log.h"
#include "platform/Network.h"
#include "server/MessageDispatch.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace velloway {

class MemoryReturn;

/// Reads one connection: joins the blocks of each message, hands it to the dispatch and asks for the next one.
/// Pauses while too much of what came for files is not finished; the connection is not read then, and the phone
/// has to wait. Other connections do not notice. Server queue only.
class ReceiveLoop : public std::enable_shared_from_this<ReceiveLoop> {
public:
    /// What belongs to `owner`; once that has gone, nothing happens any more.
    struct Targets {
        std::weak_ptr<void> owner;
        MessageDispatch& dispatch;
        MemoryReturn& memory;
        Log& log;
    };

    ReceiveLoop(Targets targets, std::shared_ptr<NetworkConnection> connection);

    /// Asks for the first message.
    void start();
    /// The connection has ended. A message that waits for files is handled before this returns, as nothing that
    /// the phone said may take effect after its end has.
    void end();

private:
    void receive();
    void received(const ReceivedContent& content);
    void receivedMessage(std::string_view message, const ReceivedContent& content, std::size_t readableAfter,
                         const MessageDispatch::Keep& keep);
    void goOn();
    void filesProgressed();
    void handleWaiting(const std::shared_ptr<FileBacklog>& backlog);

    const Targets to_;
    const std::shared_ptr<NetworkConnection> connection_;

    /// The bytes of a message that arrives in several blocks.
    std::optional<std::string> blocks_;
    const std::shared_ptr<FileBacklog> backlog_ = std::make_shared<FileBacklog>();
    /// A whole message whose effects must not come before those of the files that were sent before it.
    std::optional<std::string> waiting_;
    bool isPaused_ = false;
    bool hasEnded_ = false;
};

} // namespace velloway
