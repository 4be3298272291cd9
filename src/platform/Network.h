#pragma once

#include "platform/DispatchQueue.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace velloway {

struct NetworkError {
    /// What a user may read, as in a status line.
    std::string localizedDescription;
    /// What a log line shows; may name the system's error code.
    std::string description;
    /// The other side has closed the connection in the regular way.
    bool isGoodbye = false;
};

enum class ListenerState { setup, waiting, ready, failed, cancelled };
enum class ConnectionState { setup, waiting, preparing, ready, failed, cancelled };

/// The far end of a connection.
struct Endpoint {
    /// Present when the endpoint has the form host and port. IPv4 peers of a dual-stack listener are shown as
    /// IPv4.
    std::optional<std::string> host;
    /// The platform's own text for the whole endpoint, for log lines.
    std::string description;
};

/// A text handed to several connections without copying it.
using SharedText = std::shared_ptr<const std::string>;

/// Texts that exist only while somebody needs them: too many to lie in memory at the same time. On the queue of
/// the connections that send them.
class TextSeries {
public:
    using Made = std::function<void(SharedText text, const std::optional<NetworkError>& error)>;

    virtual ~TextSeries() = default;

    /// The text at `index`, or null when it has to be made first.
    virtual SharedText atHand(std::uint64_t index) = 0;
    /// Makes the text at `index`, with the same bytes each time; without a text when that is impossible. `made`
    /// is called once, on the queue and never inside this call.
    virtual void make(std::uint64_t index, Made made) = 0;
};

/// What one receive brought.
struct ReceivedContent {
    /// The bytes of this block, absent when the receive brought none. They belong to the connection and are
    /// valid only until the completion returns.
    std::optional<std::string_view> bytes;
    /// How many bytes after `bytes` may be read (their values mean nothing). Lets a parser that reads in wide
    /// steps work in place.
    std::size_t readableAfter = 0;
    /// Whether a content context came that carries WebSocket metadata.
    bool hasWebSocketMetadata = false;
    bool isComplete = false;
    std::optional<NetworkError> error;
    /// Called before the completion returns, keeps `bytes` where they are for as long as what it returns lives,
    /// on any thread. Absent, or null in return, where that can't be had.
    std::function<std::shared_ptr<const void>()> keep;
};

/// One accepted WebSocket. Operations are called on the queue it was started on, and all callbacks come there.
class NetworkConnection {
public:
    using StateHandler = std::function<void(ConnectionState, const std::optional<NetworkError>&)>;
    using ReceiveCompletion = std::function<void(const ReceivedContent&)>;
    using SendCompletion = std::function<void(const std::optional<NetworkError>&)>;

    /// Destroying a connection that was not cancelled drops it without a closing handshake and without further
    /// callbacks.
    virtual ~NetworkConnection() = default;

    /// Must be set before `start`. Every state is reported once, in order; `failed` and `cancelled` are final,
    /// and the handler is dropped after them, so it may hold the connection itself.
    virtual void setStateHandler(StateHandler handler) = 0;
    /// Runs the handshake; `ready` follows when it has succeeded.
    virtual void start(DispatchQueue& queue) = 0;
    /// May be called in any state, on any thread; ends in the state `cancelled`.
    virtual void cancel() = 0;

    virtual Endpoint endpoint() const = 0;

    /// Asks for one more block. At most one receive is outstanding at a time. The completion never runs inside
    /// this call. When the connection ends first, by a cancel too, it gets an error before the state is
    /// reported.
    virtual void receiveMessage(ReceiveCompletion completion) = 0;

    /// Sends one complete text frame; frames leave in the order of the calls. `identifier` names the content
    /// in diagnostics. The completion means that the text was handed to the system, not that it arrived.
    virtual void send(SharedText text, std::string_view identifier, SendCompletion completion) = 0;
    /// Sends one text of a series in the order of all sends. The connection asks for the text when it can take
    /// it and holds none that has to wait, so that a far end that does not read costs no memory. A text that
    /// cannot be made is left out, and its completion gets the error; one that cannot be made again after a
    /// part of it has left ends the connection.
    ///
    /// Texts of one series that follow each other may all be answered by the completion of the first.
    virtual void send(std::shared_ptr<TextSeries> series, std::uint64_t index, std::string_view identifier,
                      SendCompletion completion) = 0;
};

/// Callbacks come on the queue given to `start`.
class NetworkListener {
public:
    using StateHandler = std::function<void(ListenerState, const std::optional<NetworkError>&)>;
    using NewConnectionHandler = std::function<void(std::shared_ptr<NetworkConnection>)>;

    virtual ~NetworkListener() = default;

    virtual void setStateHandler(StateHandler handler) = 0;
    virtual void setNewConnectionHandler(NewConnectionHandler handler) = 0;
    virtual void start(DispatchQueue& queue) = 0;
    /// May be called on any thread; ends in the state `cancelled`, which is reported even when the listener is
    /// destroyed meanwhile, and also after `failed`. Accepted connections live on.
    virtual void cancel() = 0;
};

struct ListenerParameters {
    std::uint16_t port = 0;
    bool allowLocalEndpointReuse = false;
    int webSocketVersion = 13;
    bool autoReplyPing = false;
};

class Network {
public:
    virtual ~Network() = default;

    /// Whether the platform takes this number as the port of an endpoint.
    virtual bool acceptsPort(std::uint16_t port) const = 0;

    /// Makes a listener on all local interfaces. On failure returns null and fills `error`. A port that is in
    /// use is not a failure here: the started listener then reports `failed`.
    virtual std::shared_ptr<NetworkListener> makeListener(const ListenerParameters& parameters,
                                                          NetworkError& error) = 0;
};

} // namespace velloway
