#include "server/WebSocketServer.h"

#include "platform/Fatal.h"
#include "server/MemoryReturn.h"
#include "server/MessageDispatch.h"
#include "server/OutboundMessages.h"
#include "server/ReceiveLoop.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

namespace velloway {

namespace {

constexpr std::string_view area = "[WebSocketServer] ";
constexpr auto retryDelay = std::chrono::milliseconds(5000);

std::shared_ptr<WebSocketServer>& sharedInstance() {
    static std::shared_ptr<WebSocketServer> instance;
    return instance;
}

std::string describe(ConnectionState state, const std::optional<NetworkError>& error) {
    if (error && error->isGoodbye) {
        return "closed(" + error->description + ")";
    }
    switch (state) {
    case ConnectionState::setup:
        return "setup";
    case ConnectionState::waiting:
        return error ? "waiting(" + error->description + ")" : "waiting";
    case ConnectionState::preparing:
        return "preparing";
    case ConnectionState::ready:
        return "ready";
    case ConnectionState::failed:
        return error ? "failed(" + error->description + ")" : "failed";
    case ConnectionState::cancelled:
        return "cancelled";
    }
    return "unknown";
}

} // namespace

std::shared_ptr<WebSocketServer> WebSocketServer::make(const Dependencies& dependencies) {
    auto server = std::shared_ptr<WebSocketServer>(new WebSocketServer(dependencies));
    const auto whileAlive = [weak = server->weak_from_this()](auto operation) {
        return [weak, operation](auto... arguments) {
            if (auto self = weak.lock()) {
                (self.get()->*operation)(std::move(arguments)...);
            }
        };
    };
    server->outgoingFiles_.emplace(
        OutgoingFiles::Dependencies{.main = dependencies.main,
                                    .server = dependencies.queue,
                                    .reading = dependencies.readingQueue,
                                    .notifications = dependencies.notificationManager,
                                    .host = dependencies.host,
                                    .files = dependencies.files,
                                    .log = dependencies.log,
                                    .send = whileAlive(&WebSocketServer::send),
                                    .sendChunk = whileAlive(&WebSocketServer::sendChunk)},
        server->link_);
    return server;
}

WebSocketServer& WebSocketServer::shared() {
    return *sharedInstance();
}

void WebSocketServer::setShared(std::shared_ptr<WebSocketServer> server) {
    sharedInstance() = std::move(server);
}

WebSocketServer::WebSocketServer(const Dependencies& on)
    : main_(on.main),
      queue_(on.queue),
      network_(on.network),
      userDefaults_(on.userDefaults),
      host_(on.host),
      log_(on.log),
      link_(std::make_shared<StoreLink>()),
      connections_(std::make_shared<const ConnectionList>()),
      callEvents_(on.main, link_, on.notifications, on.log),
      incomingFiles_({.main = on.main,
                      .server = on.queue,
                      .fileQueue = on.fileQueue,
                      .link = link_,
                      .notifications = on.notificationManager,
                      .host = on.host,
                      .files = on.files,
                      .log = on.log}),
      memoryReturn_(std::make_shared<MemoryReturn>(on.queue, on.fileQueue, on.memory)),
      clipboardSync_(on.main, link_, on.pasteboard, on.notificationManager),
      batteryAlerts_(on.main, link_, on.notificationManager),
      commandRouter_(on.main, on.input, on.scripts, on.accessibility, on.log),
      dispatch_(std::make_unique<MessageDispatch>(MessageDispatch::Targets{
          .main = on.main,
          .link = link_,
          .notifications = on.notifications,
          .notificationManager = on.notificationManager,
          .callEvents = callEvents_,
          .incomingFiles = incomingFiles_,
          .clipboardSync = clipboardSync_,
          .batteryAlerts = batteryAlerts_,
          .commandRouter = commandRouter_,
          .host = on.host,
          .log = on.log,
      })) {}

WebSocketServer::~WebSocketServer() = default;

void WebSocketServer::setHistoryStore(const std::shared_ptr<HistoryStore>& store) {
    link_->historyStore = store;
}

std::uint16_t WebSocketServer::port() const {
    const std::int64_t stored = userDefaults_.integer("port");
    if (stored <= 0) {
        return defaultPort;
    }
    if (stored > std::numeric_limits<std::uint16_t>::max()) {
        fatal("Not enough bits to represent the passed value");
    }
    return static_cast<std::uint16_t>(stored);
}

void WebSocketServer::report(const std::string& status) {
    if (onStatusChange_) {
        onStatusChange_(status);
    }
}

// Lifecycle

void WebSocketServer::start() {
    stop();

    const ListenerParameters parameters{
        .port = port(), .allowLocalEndpointReuse = true, .webSocketVersion = 13, .autoReplyPing = true};
    if (!network_.acceptsPort(parameters.port)) {
        report("invalid port");
        return;
    }
    NetworkError error;
    auto listener = network_.makeListener(parameters, error);
    if (!listener) {
        report("error: " + error.localizedDescription);
        return;
    }
    listener_ = listener;

    listener->setStateHandler([weak = weak_from_this()](ListenerState state, const auto& reason) {
        if (auto self = weak.lock()) {
            self->listenerChanged(state, reason);
        }
    });
    listener->setNewConnectionHandler([weak = weak_from_this()](ConnectionPointer connection) {
        if (auto self = weak.lock()) {
            self->accept(std::move(connection));
        }
    });
    listener->start(queue_);
}

void WebSocketServer::stop() {
    if (listener_) {
        listener_->cancel();
        listener_.reset();
    }
    const auto ended = std::atomic_exchange(&connections_, std::make_shared<const ConnectionList>());
    for (const ConnectionPointer& connection : *ended) {
        connection->cancel();
    }
    withStore(main_, link_, [](HistoryStore& store) { store.availableSIMs.set({}); });
}

void WebSocketServer::listenerChanged(ListenerState state, const std::optional<NetworkError>& error) {
    switch (state) {
    case ListenerState::ready:
        report("listening on :" + std::to_string(port()));
        break;
    case ListenerState::failed:
        report("failed – " + (error ? error->localizedDescription : std::string()));
        main_.asyncAfter(retryDelay, [weak = weak_from_this()] {
            if (auto self = weak.lock()) {
                self->start();
            }
        });
        break;
    case ListenerState::cancelled:
        report("stopped");
        break;
    default:
        break;
    }
}

// Connections

/// The list is never changed in place: a new one takes the place of the old, so that `stop` may empty it from
/// the main thread while the server queue walks it.
template <class Change> void WebSocketServer::changeConnections(Change change) {
    auto present = std::atomic_load(&connections_);
    std::shared_ptr<const ConnectionList> next;
    do {
        auto changed = std::make_shared<ConnectionList>(*present);
        change(*changed);
        next = std::move(changed);
    } while (!std::atomic_compare_exchange_weak(&connections_, &present, next));
}

void WebSocketServer::accept(ConnectionPointer connection) {
    log_.line({area, "Incoming connection from ", connection->endpoint().description});
    changeConnections([&](ConnectionList& list) { list.push_back(connection); });
    connection->setStateHandler(
        [weak = weak_from_this(), connection](ConnectionState state, const auto& error) {
            if (auto self = weak.lock()) {
                self->connectionChanged(connection, state, error);
            }
        });
    connection->start(queue_);
}

void WebSocketServer::connectionChanged(const ConnectionPointer& connection, ConnectionState state,
                                        const std::optional<NetworkError>& error) {
    const std::string endpoint = connection->endpoint().description;
    if (state == ConnectionState::failed || state == ConnectionState::cancelled) {
        endReceiving(connection);
    }
    log_.line({area, "Connection ", endpoint, " state changed to ", describe(state, error)});
    switch (state) {
    case ConnectionState::failed:
        log_.line({area, "Connection ", endpoint, " failed: ", error ? error->localizedDescription : ""});
        remove(connection);
        break;
    case ConnectionState::cancelled:
        log_.line({area, "Connection ", endpoint, " cancelled"});
        remove(connection);
        break;
    case ConnectionState::ready:
        connectionReady(connection);
        break;
    default:
        break;
    }
}

void WebSocketServer::connectionReady(const ConnectionPointer& connection) {
    const Endpoint endpoint = connection->endpoint();
    log_.line({area, "Connection ", endpoint.description, " is ready (handshake complete)"});
    if (endpoint.host) {
        withStore(main_, link_,
                  [host = *endpoint.host](HistoryStore& store) { store.connectedRemoteIP.set(host); });
    }
    const auto loop = std::make_shared<ReceiveLoop>(
        ReceiveLoop::Targets{weak_from_this(), *dispatch_, *memoryReturn_, log_}, connection);
    receiveLoops_[connection.get()] = loop;
    loop->start();

    const auto welcome = outbound::connected(host_.localizedName().value_or("Mac"));
    connection->send(std::make_shared<const std::string>(welcome ? *welcome : outbound::connectedFallback()),
                     "welcome", [](const auto&) {});
}

void WebSocketServer::endReceiving(const ConnectionPointer& connection) {
    const auto found = receiveLoops_.find(connection.get());
    if (found != receiveLoops_.end()) {
        const auto loop = std::move(found->second);
        receiveLoops_.erase(found);
        loop->end();
    }
}

void WebSocketServer::remove(const ConnectionPointer& connection) {
    changeConnections([&](ConnectionList& list) { std::erase(list, connection); });
    if (!std::atomic_load(&connections_)->empty()) {
        return;
    }
    withStore(main_, link_, [](HistoryStore& store) {
        store.availableSIMs.set({});
        store.connectedRemoteIP.set(std::nullopt);
        store.connectedWifiName.set(std::nullopt);
        store.connectedDeviceName.set(std::nullopt);
    });
}

// Sending

/// Calls `sendToOne` for each connection, with what to do when the sending has ended.
template <class SendToOne> void WebSocketServer::sendToAll(SendToOne sendToOne) {
    hop(queue_, weak_from_this(), [sendToOne = std::move(sendToOne)](WebSocketServer& self) {
        const auto connections = std::atomic_load(&self.connections_);
        for (const ConnectionPointer& connection : *connections) {
            sendToOne(*connection, [&log = self.log_](const std::optional<NetworkError>& error) {
                if (error) {
                    log.line({"Send error: ", error->localizedDescription});
                }
            });
        }
    });
}

void WebSocketServer::send(std::string text) {
    auto shared = std::make_shared<const std::string>(std::move(text));
    sendToAll([shared](auto& connection, auto completion) { connection.send(shared, "send", completion); });
}

void WebSocketServer::sendChunk(std::shared_ptr<TextSeries> chunks, std::uint64_t index) {
    sendToAll([chunks, index](auto& connection, auto done) { connection.send(chunks, index, "send", done); });
}

void WebSocketServer::sendIfBuilt(std::optional<std::string> text) {
    if (text) {
        send(std::move(*text));
    }
}

void WebSocketServer::findDevice() {
    send(outbound::findDevice());
}

void WebSocketServer::sendMediaCommand(std::string_view command) {
    sendIfBuilt(outbound::mediaCommand(command));
}

void WebSocketServer::sendNavCommand(std::string_view command) {
    sendIfBuilt(outbound::navCommand(command));
}

void WebSocketServer::requestSmsHistory() {
    send(outbound::getSmsHistory());
}

void WebSocketServer::requestCallHistory() {
    send(outbound::getCallHistory());
}

void WebSocketServer::sendClipboard(std::string_view text) {
    sendIfBuilt(outbound::clipboard(text));
}

void WebSocketServer::makeCall(std::string_view number, std::int64_t simSlot) {
    send(outbound::makeCall(number, simSlot));
}

void WebSocketServer::answerCall() {
    send(outbound::answerCall());
}

void WebSocketServer::hangupCall() {
    send(outbound::hangupCall());
}

void WebSocketServer::toggleSpeaker(bool enabled) {
    send(outbound::toggleSpeaker(enabled));
}

void WebSocketServer::toggleMute(bool enabled) {
    send(outbound::toggleMute(enabled));
}

void WebSocketServer::sendReply(std::string_view key, std::string_view text) {
    sendIfBuilt(outbound::reply({.key = std::string(key), .message = std::string(text)}));
}

void WebSocketServer::sendSms(std::string_view number, std::string_view body, std::int64_t simSlot) {
    sendIfBuilt(
        outbound::sendSms({.number = std::string(number), .body = std::string(body), .simSlot = simSlot}));
}

void WebSocketServer::sendFile(const std::filesystem::path& url) {
    outgoingFiles_->sendFile(url);
}

} // namespace velloway
