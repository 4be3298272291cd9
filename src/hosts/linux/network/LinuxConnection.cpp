#include "hosts/linux/network/LinuxConnection.h"

#include "hosts/linux/network/AsioQueueAccess.h"
#include "hosts/linux/network/LinuxNetworkError.h"
#include "hosts/linux/network/ReceiveBuffer.h"
#include "hosts/linux/network/TurnExecutor.h"
#include "platform/Fatal.h"

#include <boost/asio/bind_executor.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/bind_handler.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <deque>
#include <optional>
#include <string>
#include <utility>

namespace velloway {

namespace beast = boost::beast;
namespace http = boost::beast::http;
namespace net = boost::asio;
namespace websocket = boost::beast::websocket;
using boost::system::error_code;
using net::ip::tcp;

namespace {

/// Phones behind proxies and with many cookies send long headers.
constexpr std::uint32_t maxHeaderBytes = 16 * 1024;
/// Enough for a file chunk with its escapes; more is given back after the message.
constexpr std::size_t keptBufferBytes = std::size_t{4} << 20;
/// A message's memory grows with what has come, never with what a frame header claims.
constexpr std::size_t firstReadBytes = std::size_t{64} << 10;
/// Handling a message of this size takes long enough for others to be let go first.
constexpr std::size_t largeMessageBytes = std::size_t{128} << 10;
constexpr std::size_t discardBytes = std::size_t{16} << 10;
/// What an entry of the send queue costs beside its text.
constexpr std::size_t bytesPerSend = 128;

error_code systemError(boost::system::errc::errc_t code) {
    return {static_cast<int>(code), boost::system::system_category()};
}

/// Whether valid text stops in the middle of a character.
bool endsInsideCharacter(std::string_view text) {
    const std::size_t reach = std::min<std::size_t>(text.size(), 3);
    for (std::size_t back = 1; back <= reach; ++back) {
        const auto byte = static_cast<unsigned char>(text[text.size() - back]);
        if ((byte & 0xC0) != 0x80) {
            const std::size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : byte >= 0xC0 ? 2 : 1;
            return length > back;
        }
    }
    return false;
}

/// Sixteen bytes in base64.
bool isWebSocketKey(std::string_view key) {
    return key.size() == 24 && key.ends_with("==") && std::all_of(key.begin(), key.end() - 2, [](char c) {
               return std::isalnum(static_cast<unsigned char>(c)) || c == '+' || c == '/';
           });
}

using UpgradeRequest = http::request<http::empty_body>;

std::string refusal(std::string_view status, std::string_view fields = "") {
    std::string text = "HTTP/1.1 ";
    text.append(status).append("\r\n").append(fields);
    text += "Connection: close\r\nContent-Length: 0\r\n\r\n";
    return text;
}

/// The answer to a request that cannot become a WebSocket; absent when it can. The path, the host and the
/// origin do not matter.
std::optional<std::string> refusalOf(const UpgradeRequest& request) {
    if (request.version() != 11 || request.method() != http::verb::get ||
        request.count(http::field::host) == 0) {
        return refusal("400 Bad Request");
    }
    if (!websocket::is_upgrade(request)) {
        return refusal("426 Upgrade Required", "Upgrade: websocket\r\nSec-WebSocket-Version: 13\r\n");
    }
    if (request[http::field::sec_websocket_version] != "13") {
        return refusal("426 Upgrade Required", "Upgrade: websocket\r\nSec-WebSocket-Version: 13\r\n");
    }
    const auto key = request[http::field::sec_websocket_key];
    if (request.count(http::field::sec_websocket_key) != 1 || !isWebSocketKey({key.data(), key.size()})) {
        return refusal("400 Bad Request");
    }
    return {};
}

/// The answer to what is no readable request; absent when the far end has gone.
std::optional<std::string> refusalOf(const error_code& error) {
    if (error == http::error::header_limit || error == http::error::buffer_overflow) {
        return refusal("431 Request Header Fields Too Large");
    }
    if (error.category() == make_error_code(http::error::bad_method).category() &&
        error != http::error::end_of_stream && error != http::error::partial_message) {
        return refusal("400 Bad Request");
    }
    return {};
}

} // namespace

/// Named, so that the WebSocket layer finds our way of ending it below.
class PhoneSocket : public net::basic_stream_socket<tcp, net::io_context::executor_type> {
public:
    using basic_stream_socket::basic_stream_socket;
};

/// Beast's own way waits for the far end without a bound. Here the sending half ends, and the session waits.
template <class Handler> void async_teardown(beast::role_type, PhoneSocket& socket, Handler&& handler) {
    error_code ignored;
    socket.shutdown(net::socket_base::shutdown_send, ignored);
    net::post(socket.get_executor(), beast::bind_front_handler(std::forward<Handler>(handler), error_code{}));
}

class LinuxConnection::Session final : public AsioResident, public std::enable_shared_from_this<Session> {
public:
    Session(AsioQueue& madeOn, const LinuxNetworkLimits& limits, PhoneSocket socket, Endpoint peer);

    ~Session() {
        if (hasQueue) {
            AsioQueueAccess::remove(queue, *this);
        }
    }

    void start();
    void cancel();
    void abandon();
    void queueEnds() override;
    void receive(ReceiveCompletion completion);
    void send(SharedText text, SendCompletion completion);

    AsioQueue& queue;
    const Endpoint endpoint;
    StateHandler stateHandler;
    /// The port object has gone without a cancel: nobody is called any more.
    std::atomic<bool> isAbandoned = false;
    std::atomic<bool> isCancelRequested = false;
    std::atomic<bool> hasQueue = true;

private:
    enum class Phase { setup, preparing, ready, ended };
    using Stream = websocket::stream<PhoneSocket, false>;

    struct Handshake {
        beast::flat_buffer buffer{maxHeaderBytes + 4096};
        http::request_parser<http::empty_body> parser;
        std::string refusal;
    };

    struct Outgoing {
        /// Null when the text was refused because too much waits.
        SharedText text;
        SendCompletion completion;
    };

    void configure();
    void readRequest();
    void didReadRequest(const error_code& error);
    void refuse(std::string answer, const error_code& reason);
    void acceptRequest();
    void didAccept(const error_code& error);

    void readMore();
    void didRead(const error_code& error, std::size_t count);
    void deliver();
    void handOver();
    void deliverAfterOthers();
    void endWithBadText();

    void writeNext();
    void didWrite(const error_code& error);

    void fail(const error_code& error);
    void end(ConnectionState state, const NetworkError& error);
    void closeSocket();
    /// Closes the socket when the limit has passed, whatever the phase is then.
    void closeAfter(std::chrono::milliseconds limit);
    /// Gives the far end time to read our last bytes: closing over unread input would destroy them.
    void linger();
    void discardInput();
    void report(ConnectionState state, const std::optional<NetworkError>& error = {});

    LinuxNetworkLimits limits_;
    Phase phase_ = Phase::setup;
    // Both live as long as the queue.
    std::optional<Stream> stream_;
    std::optional<net::steady_timer> timer_;
    std::unique_ptr<Handshake> handshake_;

    Turn turn_;
    ReceiveBuffer buffer_;
    ReceiveCompletion receive_;
    bool isReading_ = false;
    bool isDelivering_ = false;
    /// A whole message waits in the buffer.
    bool isDeliveryDue_ = false;

    std::deque<Outgoing> outgoing_;
    std::size_t queuedBytes_ = 0;
    bool isWriting_ = false;
    bool isOverflowing_ = false;
};

LinuxConnection::Session::Session(AsioQueue& madeOn, const LinuxNetworkLimits& limits, PhoneSocket socket,
                                  Endpoint peer)
    : queue(madeOn),
      endpoint(std::move(peer)),
      limits_(limits),
      stream_(std::in_place, std::move(socket)),
      timer_(AsioQueueAccess::context(madeOn)),
      turn_(AsioQueueAccess::context(madeOn), [this] { return weak_from_this().lock(); }),
      buffer_(limits.messageBytes + firstReadBytes) {
    AsioQueueAccess::add(queue, *this);
}

// The handshake.

void LinuxConnection::Session::start() {
    if (phase_ != Phase::setup) {
        return;
    }
    phase_ = Phase::preparing;
    report(ConnectionState::preparing);
    configure();
    timer_->expires_after(limits_.handshake);
    timer_->async_wait([self = shared_from_this()](const error_code& error) {
        if (!error && self->phase_ == Phase::preparing) {
            self->fail(systemError(boost::system::errc::timed_out));
        }
    });
    readRequest();
}

void LinuxConnection::Session::configure() {
    error_code ignored;
    // Two answers in a row must not wait for the far end's delayed acknowledgement.
    stream_->next_layer().set_option(tcp::no_delay(true), ignored);
    // The idle timer alone would double the cost of a small message.
    stream_->set_option(
        websocket::stream_base::timeout{websocket::stream_base::none(), websocket::stream_base::none(), false});
    stream_->set_option(websocket::stream_base::decorator(
        [](websocket::response_type& response) { response.set(http::field::server, "Velloway"); }));
    stream_->read_message_max(limits_.messageBytes);
    // One message is one frame; pieces would be sent one system call each.
    stream_->auto_fragment(false);
    stream_->text(true);
}

void LinuxConnection::Session::readRequest() {
    handshake_ = std::make_unique<Handshake>();
    handshake_->parser.header_limit(maxHeaderBytes);
    http::async_read_header(stream_->next_layer(), handshake_->buffer, handshake_->parser,
                            [self = shared_from_this()](const error_code& error, std::size_t) {
                                if (self->phase_ == Phase::preparing) {
                                    self->didReadRequest(error);
                                }
                            });
}

void LinuxConnection::Session::didReadRequest(const error_code& error) {
    if (error) {
        if (auto answer = refusalOf(error)) {
            refuse(std::move(*answer), error);
        } else {
            fail(error);
        }
        return;
    }
    auto answer = refusalOf(handshake_->parser.get());
    // A phone that speaks before it was answered does not follow the protocol.
    if (!answer && handshake_->buffer.size() > 0) {
        answer = refusal("400 Bad Request");
    }
    if (answer) {
        refuse(std::move(*answer), make_error_code(websocket::error::upgrade_declined));
        return;
    }
    acceptRequest();
}

void LinuxConnection::Session::refuse(std::string answer, const error_code& reason) {
    handshake_->refusal = std::move(answer);
    net::async_write(stream_->next_layer(), net::buffer(handshake_->refusal),
                     [self = shared_from_this(), reason](const error_code&, std::size_t) {
                         if (self->phase_ == Phase::preparing) {
                             self->end(ConnectionState::failed, networkError(reason));
                             self->linger();
                         }
                     });
}

void LinuxConnection::Session::acceptRequest() {
    stream_->async_accept(handshake_->parser.get(), [self = shared_from_this()](const error_code& error) {
        if (self->phase_ == Phase::preparing) {
            self->didAccept(error);
        }
    });
}

void LinuxConnection::Session::didAccept(const error_code& error) {
    handshake_.reset();
    if (error) {
        fail(error);
        return;
    }
    timer_->cancel();
    phase_ = Phase::ready;
    report(ConnectionState::ready);
    if (receive_ && !isReading_) {
        readMore();
    }
    if (!outgoing_.empty() && !isWriting_) {
        writeNext();
    }
}

// Receiving.

void LinuxConnection::Session::receive(ReceiveCompletion completion) {
    if (phase_ == Phase::ended) {
        queue.async([self = shared_from_this(), completion = std::move(completion)] {
            if (!self->isAbandoned) {
                completion({.error = networkError(systemError(boost::system::errc::not_connected))});
            }
        });
        return;
    }
    if (receive_) {
        fatal("LinuxConnection asked for a second block while one is outstanding");
    }
    receive_ = std::move(completion);
    if (phase_ == Phase::ready && !isReading_ && !isDelivering_) {
        readMore();
    }
}

void LinuxConnection::Session::readMore() {
    isReading_ = true;
    const std::size_t room = std::max({firstReadBytes, buffer_.size(), buffer_.capacity() - buffer_.size()});
    stream_->async_read_some(
        buffer_, room,
        net::bind_executor(TurnExecutor(turn_),
                           [self = shared_from_this()](const error_code& error, std::size_t count) {
                               self->isReading_ = false;
                               if (self->phase_ == Phase::ready) {
                                   self->didRead(error, count);
                               }
                           }));
}

void LinuxConnection::Session::didRead(const error_code& error, std::size_t count) {
    if (error == websocket::error::buffer_overflow) {
        end(ConnectionState::failed, networkError(error));
        closeAfter(limits_.closing);
        stream_->async_close(websocket::close_code::too_big,
                             [self = shared_from_this()](const error_code&) { self->linger(); });
    } else if (error) {
        end(ConnectionState::failed, networkError(error));
        linger();
    } else if (!stream_->is_message_done()) {
        readMore();
    } else if (count == 0 && stream_->got_text() && endsInsideCharacter(buffer_.text())) {
        endWithBadText();
    } else if (buffer_.size() >= largeMessageBytes) {
        deliverAfterOthers();
    } else {
        deliver();
    }
}

void LinuxConnection::Session::deliver() {
    handOver();
    if (receive_) {
        readMore();
    }
}

void LinuxConnection::Session::handOver() {
    const auto completion = std::exchange(receive_, nullptr);
    isDelivering_ = true;
    if (!isAbandoned) {
        completion({.bytes = buffer_.text(),
                    .readableAfter = buffer_.size() ? ReceiveBuffer::readableAfter : 0,
                    .hasWebSocketMetadata = true,
                    .isComplete = true});
    }
    isDelivering_ = false;
    buffer_.clear(keptBufferBytes);
}

/// What has come on other connections meanwhile is found at the end of this turn of the event loop and handled
/// in the next; the large message is behind it. A pointer move so waits for one large message at most.
void LinuxConnection::Session::deliverAfterOthers() {
    isDeliveryDue_ = true;
    auto& loop = AsioQueueAccess::context(queue);
    net::post(loop, [self = shared_from_this(), &loop] {
        net::post(loop, [self] {
            if (std::exchange(self->isDeliveryDue_, false)) {
                self->deliver();
            }
        });
    });
}

/// Beast checks the end of a text only when its last fragment has bytes.
void LinuxConnection::Session::endWithBadText() {
    end(ConnectionState::failed, networkError(make_error_code(websocket::error::bad_frame_payload)));
    closeAfter(limits_.closing);
    stream_->async_close(websocket::close_code::bad_payload,
                         [self = shared_from_this()](const error_code&) { self->closeSocket(); });
}

// Sending.

void LinuxConnection::Session::send(SharedText text, SendCompletion completion) {
    if (phase_ == Phase::ended) {
        queue.async([self = shared_from_this(), completion = std::move(completion)] {
            if (completion && !self->isAbandoned) {
                completion(networkError(systemError(boost::system::errc::not_connected)));
            }
        });
        return;
    }
    const std::size_t size = text->size() + bytesPerSend;
    if (!isOverflowing_ && size > limits_.queuedBytes - std::min(queuedBytes_, limits_.queuedBytes)) {
        isOverflowing_ = true;
        queue.async(
            [self = shared_from_this()] { self->fail(systemError(boost::system::errc::no_buffer_space)); });
    }
    if (isOverflowing_) {
        text = nullptr;
    } else {
        queuedBytes_ += size;
    }
    outgoing_.push_back({std::move(text), std::move(completion)});
    if (phase_ == Phase::ready && !isWriting_) {
        writeNext();
    }
}

void LinuxConnection::Session::writeNext() {
    const SharedText text = outgoing_.front().text;
    if (!text) {
        return;
    }
    isWriting_ = true;
    stream_->async_write(net::buffer(*text),
                         [self = shared_from_this(), text](const error_code& error, std::size_t) {
                             if (self->phase_ == Phase::ready) {
                                 self->didWrite(error);
                             }
                         });
}

void LinuxConnection::Session::didWrite(const error_code& error) {
    if (error) {
        fail(error);
        return;
    }
    const Outgoing sent = std::move(outgoing_.front());
    outgoing_.pop_front();
    queuedBytes_ -= sent.text->size() + bytesPerSend;
    if (sent.completion && !isAbandoned) {
        sent.completion(std::nullopt);
    }
    isWriting_ = false;
    if (!outgoing_.empty()) {
        writeNext();
    }
}

// The end.

void LinuxConnection::Session::cancel() {
    if (phase_ == Phase::ended) {
        return;
    }
    const bool wasReady = phase_ == Phase::ready;
    end(ConnectionState::cancelled, networkError(systemError(boost::system::errc::operation_canceled)));
    if (!wasReady || !stream_->is_open()) {
        closeSocket();
        return;
    }
    closeAfter(limits_.closing);
    stream_->async_close(websocket::close_code::going_away,
                         [self = shared_from_this()](const error_code&) { self->closeSocket(); });
}

void LinuxConnection::Session::fail(const error_code& error) {
    if (phase_ == Phase::ended) {
        return;
    }
    end(ConnectionState::failed, networkError(error));
    closeSocket();
}

void LinuxConnection::Session::end(ConnectionState state, const NetworkError& error) {
    // What has come whole is not lost with the connection.
    if (std::exchange(isDeliveryDue_, false)) {
        handOver();
    }
    phase_ = Phase::ended;
    timer_->cancel();
    // They may hold the last reference to the port object, and go when all has been told.
    const auto receive = std::exchange(receive_, nullptr);
    const auto outgoing = std::exchange(outgoing_, {});
    const auto handler = std::exchange(stateHandler, nullptr);
    if (receive && !isAbandoned) {
        receive({.error = error});
    }
    for (const Outgoing& unsent : outgoing) {
        if (unsent.completion && !isAbandoned) {
            unsent.completion(error);
        }
    }
    if (handler && !isAbandoned) {
        handler(state, state == ConnectionState::failed ? std::optional(error) : std::nullopt);
    }
}

void LinuxConnection::Session::abandon() {
    // A connection that has ended may still be saying good-bye.
    if (phase_ != Phase::ended) {
        fail(systemError(boost::system::errc::operation_canceled));
    }
}

void LinuxConnection::Session::queueEnds() {
    const auto alive = weak_from_this().lock();
    phase_ = Phase::ended;
    hasQueue = false;
    turn_.clear();
    stream_.reset();
    timer_.reset();
    const auto receive = std::exchange(receive_, nullptr);
    const auto outgoing = std::exchange(outgoing_, {});
    const auto handler = std::exchange(stateHandler, nullptr);
}

void LinuxConnection::Session::closeSocket() {
    timer_->cancel();
    error_code ignored;
    stream_->next_layer().close(ignored);
}

void LinuxConnection::Session::closeAfter(std::chrono::milliseconds limit) {
    timer_->expires_after(limit);
    timer_->async_wait([self = shared_from_this()](const error_code& error) {
        if (!error) {
            self->closeSocket();
        }
    });
}

void LinuxConnection::Session::linger() {
    error_code ignored;
    stream_->next_layer().shutdown(net::socket_base::shutdown_send, ignored);
    buffer_.clear(0);
    closeAfter(limits_.closing);
    discardInput();
}

void LinuxConnection::Session::discardInput() {
    stream_->next_layer().async_read_some(buffer_.prepare(discardBytes),
                                          [self = shared_from_this()](const error_code& error, std::size_t) {
                                              if (error) {
                                                  self->closeSocket();
                                              } else {
                                                  self->discardInput();
                                              }
                                          });
}

void LinuxConnection::Session::report(ConnectionState state, const std::optional<NetworkError>& error) {
    if (stateHandler && !isAbandoned) {
        stateHandler(state, error);
    }
}

// The port.

LinuxConnection::LinuxConnection(AsioQueue& queue, const LinuxNetworkLimits& limits, int descriptor,
                                 bool isIPv6, Endpoint endpoint)
    : session_(std::make_shared<Session>(queue, limits,
                                         PhoneSocket(AsioQueueAccess::context(queue).get_executor(),
                                                     isIPv6 ? tcp::v6() : tcp::v4(), descriptor),
                                         std::move(endpoint))) {}

LinuxConnection::~LinuxConnection() {
    session_->isAbandoned = !session_->isCancelRequested;
    if (session_->hasQueue) {
        AsioQueue& queue = session_->queue;
        queue.async([session = std::move(session_)] { session->abandon(); });
    }
}

void LinuxConnection::setStateHandler(StateHandler handler) {
    session_->stateHandler = std::move(handler);
}

void LinuxConnection::start(DispatchQueue& queue) {
    if (&queue != &session_->queue) {
        fatal("LinuxConnection started on a foreign queue");
    }
    session_->queue.async([session = session_] { session->start(); });
}

void LinuxConnection::cancel() {
    session_->isCancelRequested = true;
    if (session_->hasQueue) {
        session_->queue.async([session = session_] { session->cancel(); });
    }
}

Endpoint LinuxConnection::endpoint() const {
    return session_->endpoint;
}

void LinuxConnection::receiveMessage(ReceiveCompletion completion) {
    session_->receive(std::move(completion));
}

void LinuxConnection::send(SharedText text, std::string_view, SendCompletion completion) {
    session_->send(std::move(text), std::move(completion));
}

} // namespace velloway
