#include "hosts/mac/MacConnection.h"

#include "hosts/mac/MacDispatchQueue.h"
#include "hosts/mac/MacNetworkError.h"

#include <atomic>
#include <cstdlib>

namespace velloway {

namespace {

/// `setup` is never reported by the framework.
ConnectionState stateFrom(nw_connection_state_t state) {
    switch (state) {
    case nw_connection_state_waiting:
        return ConnectionState::waiting;
    case nw_connection_state_preparing:
        return ConnectionState::preparing;
    case nw_connection_state_ready:
        return ConnectionState::ready;
    case nw_connection_state_failed:
        return ConnectionState::failed;
    case nw_connection_state_cancelled:
        return ConnectionState::cancelled;
    case nw_connection_state_invalid:
    default:
        break;
    }
    return ConnectionState::setup;
}

/// IPv4 peers that a socket for both families shows as IPv6 are shown as what they are.
std::string withoutMappingPrefix(std::string address) {
    constexpr std::string_view prefix = "::ffff:";
    if (address.starts_with(prefix) && address.find('.') != std::string::npos) {
        address.erase(0, prefix.size());
    }
    return address;
}

std::optional<std::string> hostOf(nw_endpoint_t endpoint) {
    switch (nw_endpoint_get_type(endpoint)) {
    case nw_endpoint_type_host:
        return nw_endpoint_get_hostname(endpoint);
    case nw_endpoint_type_address: {
        const std::unique_ptr<char, decltype(&std::free)> address(nw_endpoint_copy_address_string(endpoint),
                                                                  &std::free);
        return withoutMappingPrefix(address.get());
    }
    default:
        return std::nullopt;
    }
}

/// Absent when the context carries no metadata of a WebSocket.
std::optional<nw_ws_opcode_t> opcodeOf(nw_content_context_t context) {
    if (context == nullptr) {
        return std::nullopt;
    }
    const auto definition = NetworkRef<nw_protocol_definition_t>::adopt(nw_protocol_copy_ws_definition());
    const auto metadata = NetworkRef<nw_protocol_metadata_t>::adopt(
        nw_content_context_copy_protocol_metadata(context, definition.get()));
    const bool isWebSocket = metadata && nw_protocol_metadata_is_ws(metadata.get());
    return isWebSocket ? std::optional(nw_ws_metadata_get_opcode(metadata.get())) : std::nullopt;
}

/// The other side has closed the WebSocket, or the stream under it.
bool isEndOfStream(dispatch_data_t content, std::optional<nw_ws_opcode_t> opcode, bool isComplete) {
    return opcode == nw_ws_opcode_close || (content == nullptr && !opcode && isComplete);
}

/// A content context for one text frame.
NetworkRef<nw_content_context_t> textContext(std::string_view identifier) {
    const auto metadata = NetworkRef<nw_protocol_metadata_t>::adopt(nw_ws_create_metadata(nw_ws_opcode_text));
    auto context =
        NetworkRef<nw_content_context_t>::adopt(nw_content_context_create(std::string(identifier).c_str()));
    nw_content_context_set_metadata_for_protocol(context.get(), metadata.get());
    return context;
}

/// The bytes of `text` in place, which stays alive until the framework has let go of them.
DispatchRef<dispatch_data_t> dataOf(const SharedText& text) {
    const SharedText held = text;
    return DispatchRef<dispatch_data_t>::adopt(dispatch_data_create(text->data(), text->size(), nullptr, ^{
      (void)held;
    }));
}

} // namespace

/// Queue only, but for its making and `isDropped`.
struct MacConnection::Shared {
    explicit Shared(BeginActivity begin) : beginActivity(std::move(begin)) {}

    StateHandler handler;
    /// The connection object has gone, so nobody waits for anything. Set on any thread.
    std::atomic<bool> isDropped = false;
    BeginActivity beginActivity;
    std::shared_ptr<void> activity;

    void report(ConnectionState state, const std::optional<NetworkError>& error) {
        const bool isFinal = state == ConnectionState::failed || state == ConnectionState::cancelled;
        if (state == ConnectionState::ready) {
            activity = beginActivity();
        } else if (isFinal) {
            activity.reset();
        }
        const StateHandler called = isFinal ? std::exchange(handler, nullptr) : handler;
        if (called) {
            called(state, error);
        }
    }
};

MacConnection::MacConnection(nw_connection_t accepted, BeginActivity beginActivity)
    : connection_(NetworkRef<nw_connection_t>::share(accepted)),
      shared_(std::make_shared<Shared>(std::move(beginActivity))) {
    const std::shared_ptr<Shared> shared = shared_;
    nw_connection_set_state_changed_handler(accepted, ^(nw_connection_state_t state, nw_error_t error) {
      shared->report(stateFrom(state), networkErrorFrom(error));
    });
}

MacConnection::~MacConnection() {
    shared_->isDropped = true;
    shared_->handler = nullptr;
    nw_connection_force_cancel(connection_.get());
}

void MacConnection::setStateHandler(StateHandler handler) {
    shared_->handler = std::move(handler);
}

void MacConnection::start(DispatchQueue& queue) {
    nw_connection_set_queue(connection_.get(),
                            static_cast<dispatch_queue_t>(static_cast<MacDispatchQueue&>(queue).native()));
    nw_connection_start(connection_.get());
}

void MacConnection::cancel() {
    nw_connection_cancel(connection_.get());
}

Endpoint MacConnection::endpoint() const {
    const auto native = NetworkRef<nw_endpoint_t>::adopt(nw_connection_copy_endpoint(connection_.get()));
    if (!native) {
        return {.description = "unknown"};
    }
    std::optional<std::string> host = hostOf(native.get());
    if (!host) {
        return {.description = "unnamed"};
    }
    const char beforePort = host->find(':') == std::string::npos ? ':' : '.';
    std::string description = *host + beforePort + std::to_string(nw_endpoint_get_port(native.get()));
    return {.host = std::move(host), .description = std::move(description)};
}

void MacConnection::receiveMessage(ReceiveCompletion completion) {
    const std::shared_ptr<Shared> shared = shared_;
    // The framework holds the connection while it calls a completion.
    nw_connection_t _Nonnull const connection = connection_.get();
    nw_connection_receive_message(connection, ^(dispatch_data_t content, nw_content_context_t context,
                                                bool isComplete, nw_error_t error) {
      if (shared->isDropped) {
          return;
      }
      const std::optional<nw_ws_opcode_t> opcode = opcodeOf(context);
      ReceivedContent received{.hasWebSocketMetadata = opcode.has_value(),
                               .isComplete = isComplete,
                               .error = networkErrorFrom(error)};
      std::shared_ptr<const DispatchRef<dispatch_data_t>> inOnePiece;
      if (content != nullptr) {
          const void* bytes = nullptr;
          std::size_t size = 0;
          inOnePiece = std::make_shared<const DispatchRef<dispatch_data_t>>(
              DispatchRef<dispatch_data_t>::adopt(dispatch_data_create_map(content, &bytes, &size)));
          received.bytes = std::string_view(static_cast<const char*>(bytes), size);
          received.keep = [&inOnePiece] { return inOnePiece; };
      }
      completion(received);
      if (!shared->isDropped && (received.error || isEndOfStream(content, opcode, isComplete))) {
          nw_connection_cancel(connection);
      }
    });
}

void MacConnection::send(SharedText text, std::string_view identifier, SendCompletion completion) {
    const std::shared_ptr<Shared> shared = shared_;
    nw_connection_send(connection_.get(), dataOf(text).get(), textContext(identifier).get(), true,
                       ^(nw_error_t error) {
                         if (completion && !shared->isDropped) {
                             completion(networkErrorFrom(error));
                         }
                       });
}

} // namespace velloway
