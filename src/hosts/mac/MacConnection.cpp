#include "hosts/mac/MacConnection.h"

#include "hosts/mac/MacDispatchQueue.h"
#include "hosts/mac/MacNetworkError.h"

#include <atomic>
#include <cstdlib>
#include <list>

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
struct MacConnection::Shared : std::enable_shared_from_this<Shared> {
    Shared(nw_connection_t accepted, BeginActivity begin)
        : connection(accepted), beginActivity(std::move(begin)) {}

    struct Waiting {
        /// Null for a series.
        SharedText text;
        std::shared_ptr<TextSeries> series;
        /// Of the series, so many texts from `first` on.
        std::uint64_t first = 0;
        std::uint64_t count = 1;
        std::string identifier;
        SendCompletion completion;
    };

    /// Valid until `isDropped`.
    const nw_connection_t connection;
    StateHandler handler;
    /// The connection object has gone, so nobody waits for anything. Set on any thread.
    std::atomic<bool> isDropped = false;
    BeginActivity beginActivity;
    std::shared_ptr<void> activity;
    bool isReady = false;
    bool hasEnded = false;
    /// Everything from the first series on that is not with the framework.
    std::list<Waiting> waiting;
    /// A text of a series is being made, or is with the framework.
    bool isSending = false;

    void report(ConnectionState state, const std::optional<NetworkError>& error) {
        const bool isFinal = state == ConnectionState::failed || state == ConnectionState::cancelled;
        if (state == ConnectionState::ready) {
            activity = beginActivity();
        } else if (isFinal) {
            activity.reset();
            hasEnded = true;
            answer(std::exchange(waiting, {}), error ? error : cancelled());
        }
        const StateHandler called = isFinal ? std::exchange(handler, nullptr) : handler;
        if (called) {
            called(state, error);
        }
        if (state == ConnectionState::ready) {
            isReady = true;
            sendNext();
        }
    }

    static std::optional<NetworkError> cancelled() {
        constexpr const char* text = "Operation canceled";
        return NetworkError{.localizedDescription = text, .description = text};
    }

    void answer(const std::list<Waiting>& sends, const std::optional<NetworkError>& error) {
        for (const Waiting& each : sends) {
            for (std::uint64_t index = 0; index < each.count && each.completion && !isDropped; ++index) {
                each.completion(error);
            }
        }
    }

    /// `done` is called when the framework has let go of the text, unless the connection has been dropped.
    void handOver(const SharedText& text, std::string_view identifier, SendCompletion done) {
        const std::shared_ptr<Shared> self = weak_from_this().lock();
        nw_connection_send(connection, dataOf(text).get(), textContext(identifier).get(), true,
                           ^(nw_error_t error) {
                             if (done && !self->isDropped) {
                                 done(networkErrorFrom(error));
                             }
                           });
    }

    void send(Waiting next) {
        if (hasEnded) {
            // The framework answers with the reason.
            handOver(next.text ? next.text : std::make_shared<const std::string>(), next.identifier,
                     next.completion);
            return;
        }
        const bool goesOn = next.series && !waiting.empty() && waiting.back().series == next.series &&
                            waiting.back().first + waiting.back().count == next.first;
        if (goesOn) {
            ++waiting.back().count;
        } else {
            waiting.push_back(std::move(next));
        }
        sendNext();
    }

    void sendNext() {
        while (!isSending && !waiting.empty()) {
            Waiting& first = waiting.front();
            if (first.series && !isReady) {
                return;
            }
            if (first.series) {
                sendFromSeries(first);
            } else {
                const Waiting next = std::move(first);
                waiting.pop_front();
                handOver(next.text, next.identifier, next.completion);
            }
        }
    }

    void sendFromSeries(const Waiting& first) {
        isSending = true;
        if (const SharedText text = first.series->atHand(first.first)) {
            handOverFirst(text);
            return;
        }
        first.series->make(first.first, [weak = weak_from_this()](const SharedText& text, const auto& error) {
            const auto self = weak.lock();
            if (!self || self->isDropped || self->hasEnded) {
                return;
            }
            if (text) {
                self->handOverFirst(text);
            } else {
                self->textHasGone(self->takeFirst().completion, error);
            }
        });
    }

    void handOverFirst(const SharedText& text) {
        const Waiting first = takeFirst();
        handOver(text, first.identifier,
                 [self = weak_from_this().lock(), completion = first.completion](const auto& error) {
                     const std::list<Waiting> rest =
                         error ? std::exchange(self->waiting, {}) : std::list<Waiting>();
                     self->textHasGone(completion, error);
                     self->answer(rest, error);
                 });
    }

    void textHasGone(const SendCompletion& completion, const std::optional<NetworkError>& error) {
        if (completion) {
            completion(error);
        }
        isSending = false;
        sendNext();
    }

    /// One text of the series in front.
    Waiting takeFirst() {
        Waiting taken = waiting.front();
        ++waiting.front().first;
        if (--waiting.front().count == 0) {
            waiting.pop_front();
        }
        return taken;
    }
};

MacConnection::MacConnection(nw_connection_t accepted, BeginActivity beginActivity)
    : connection_(NetworkRef<nw_connection_t>::share(accepted)),
      shared_(std::make_shared<Shared>(accepted, std::move(beginActivity))) {
    const std::shared_ptr<Shared> shared = shared_;
    nw_connection_set_state_changed_handler(accepted, ^(nw_connection_state_t state, nw_error_t error) {
      shared->report(stateFrom(state), networkErrorFrom(error));
    });
}

MacConnection::~MacConnection() {
    shared_->isDropped = true;
    shared_->handler = nullptr;
    shared_->waiting.clear();
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
    shared_->send(
        {.text = std::move(text), .identifier = std::string(identifier), .completion = std::move(completion)});
}

void MacConnection::send(std::shared_ptr<TextSeries> series, std::uint64_t index, std::string_view identifier,
                         SendCompletion completion) {
    shared_->send({.series = std::move(series),
                   .first = index,
                   .identifier = std::string(identifier),
                   .completion = std::move(completion)});
}

} // namespace velloway
