#pragma once

#include "features/BatteryAlerts.h"
#include "features/CallEvents.h"
#include "features/ClipboardSync.h"
#include "features/IncomingFiles.h"
#include "features/OutgoingFiles.h"
#include "platform/Files.h"
#include "platform/Memory.h"
#include "platform/Network.h"
#include "platform/UserDefaults.h"
#include "remote/CommandRouter.h"
#include "state/AppNotificationCenter.h"
#include "state/StoreLink.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace velloway {

class MemoryReturn;
class MessageDispatch;
class ReceiveLoop;

/// The one object that owns the link to the phone: it listens, keeps every connection, assembles what comes in
/// and sends to all of them.
///
/// There are no locks: what comes in is handled on the server queue, one message at a time; what it brings for
/// files is decoded and written on the file queue; the store and the callers of `start`, `stop` and the
/// outbound operations belong to the main thread.
class WebSocketServer : public std::enable_shared_from_this<WebSocketServer> {
public:
    /// Everything that the server and its features ask of the desktop; all of it must outlive the server.
    struct Dependencies {
        DispatchQueue& main;
        DispatchQueue& queue;
        DispatchQueue& fileQueue;
        /// Where files that are sent are read; may be `queue`.
        DispatchQueue& readingQueue;
        Network& network;
        UserDefaults& userDefaults;
        Pasteboard& pasteboard;
        InputEvents& input;
        Scripts& scripts;
        Accessibility& accessibility;
        Host& host;
        Files& files;
        Memory& memory;
        Log& log;
        NotificationManager& notificationManager;
        AppNotificationCenter& notifications;
    };

    using StatusCallback = std::function<void(const std::string& status)>;

    static std::shared_ptr<WebSocketServer> make(const Dependencies& dependencies);
    ~WebSocketServer();

    /// The instance of this process; the composition installs it, and everything else takes a reference.
    static WebSocketServer& shared();
    static void setShared(std::shared_ptr<WebSocketServer> server);

    /// Held weakly. Main thread.
    void setHistoryStore(const std::shared_ptr<HistoryStore>& store);

    /// Receives each status text: on the server queue for the states of the listener, on the caller's thread
    /// of `start` for what `start` itself finds. Must be set before `start`.
    void setOnStatusChange(StatusCallback callback) { onStatusChange_ = std::move(callback); }

    static constexpr std::uint16_t defaultPort = 8765;
    /// The stored port, or the default when none above 0 is stored. A stored port above 65535 is fatal.
    std::uint16_t port() const;

    /// Stops what is running, then listens. Main thread.
    void start();
    /// Ends the listener and every connection. Main thread.
    void stop();

    /// Sends to every connection, in the order of the calls. Returns at once; nobody learns when there is no
    /// connection. Any thread.
    void send(std::string text);

    // The operations below build one message each and send it. Main thread.
    void findDevice();
    void sendMediaCommand(std::string_view command);
    void sendNavCommand(std::string_view command);
    void requestSmsHistory();
    void requestCallHistory();
    void sendClipboard(std::string_view text);
    void makeCall(std::string_view number, std::int64_t simSlot);
    void answerCall();
    void hangupCall();
    void toggleSpeaker(bool enabled);
    void toggleMute(bool enabled);
    /// Any thread.
    void sendReply(std::string_view key, std::string_view text);
    void sendSms(std::string_view number, std::string_view body, std::int64_t simSlot);

    /// Any thread.
    void sendFile(const std::filesystem::path& url);

private:
    explicit WebSocketServer(const Dependencies& dependencies);

    using ConnectionPointer = std::shared_ptr<NetworkConnection>;
    using ConnectionList = std::vector<ConnectionPointer>;

    void listenerChanged(ListenerState state, const std::optional<NetworkError>& error);
    void accept(ConnectionPointer connection);
    void connectionChanged(const ConnectionPointer& connection, ConnectionState state,
                           const std::optional<NetworkError>& error);
    void connectionReady(const ConnectionPointer& connection);
    void endReceiving(const ConnectionPointer& connection);
    void remove(const ConnectionPointer& connection);
    template <class SendToOne> void sendToAll(SendToOne sendToOne);
    void sendChunk(std::shared_ptr<TextSeries> chunks, std::uint64_t index);
    template <class Change> void changeConnections(Change change);
    void sendIfBuilt(std::optional<std::string> text);
    void report(const std::string& status);

    DispatchQueue& main_;
    DispatchQueue& queue_;
    Network& network_;
    UserDefaults& userDefaults_;
    Host& host_;
    Log& log_;

    std::shared_ptr<StoreLink> link_;
    StatusCallback onStatusChange_;
    /// Main thread.
    std::shared_ptr<NetworkListener> listener_;
    /// In order of arrival. Read and replaced atomically, on both threads.
    std::shared_ptr<const ConnectionList> connections_;
    /// Of each connection from `ready` to its end. Server queue.
    std::unordered_map<const NetworkConnection*, std::shared_ptr<ReceiveLoop>> receiveLoops_;

    CallEvents callEvents_;
    IncomingFiles incomingFiles_;
    /// Made once the server can be held weakly; always there after `make`.
    std::optional<OutgoingFiles> outgoingFiles_;
    std::shared_ptr<MemoryReturn> memoryReturn_;
    ClipboardSync clipboardSync_;
    BatteryAlerts batteryAlerts_;
    CommandRouter commandRouter_;
    std::unique_ptr<MessageDispatch> dispatch_;
};

} // namespace velloway
