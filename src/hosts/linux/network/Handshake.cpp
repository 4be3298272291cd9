#include "hosts/linux/network/Handshake.h"

#include <boost/asio/write.hpp>
#include <boost/beast/core/bind_handler.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>

#include <algorithm>
#include <cctype>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace velloway {

namespace beast = boost::beast;
namespace http = boost::beast::http;
namespace net = boost::asio;
namespace websocket = boost::beast::websocket;
using boost::system::error_code;

namespace {

/// Phones behind proxies and with many cookies send long headers.
constexpr std::uint32_t maxHeaderBytes = 16 * 1024;

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

/// The answer to an unreadable request; absent when the far end has gone.
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

/// One handshake, kept alive by the operation that is under way.
class Handshake : public std::enable_shared_from_this<Handshake> {
public:
    Handshake(PhoneSocket& socket, std::shared_ptr<void> owner,
              std::function<void(const HandshakeResult&)> completion)
        : socket_(socket), owner_(std::move(owner)), completion_(std::move(completion)) {}

    void start() {
        parser_.header_limit(maxHeaderBytes);
        http::async_read_header(
            socket_, buffer_, parser_,
            [self = shared_from_this()](const error_code& error, std::size_t) { self->didRead(error); });
    }

private:
    void didRead(const error_code& error) {
        if (error) {
            if (auto answer = refusalOf(error)) {
                refuse(std::move(*answer), error);
            } else {
                completion_({.error = error});
            }
            return;
        }
        auto answer = refusalOf(parser_.get());
        // A phone that speaks before it was answered does not follow the protocol.
        if (!answer && buffer_.size() > 0) {
            answer = refusal("400 Bad Request");
        }
        if (answer) {
            refuse(std::move(*answer), make_error_code(websocket::error::upgrade_declined));
        } else {
            accept();
        }
    }

    void refuse(std::string answer, const error_code& reason) {
        refusal_ = std::move(answer);
        net::async_write(socket_, net::buffer(refusal_),
                         [self = shared_from_this(), reason](const error_code&, std::size_t) {
                             self->completion_({.error = reason, .wasRefused = true});
                         });
    }

    void accept() {
        stream_.set_option(websocket::stream_base::timeout{websocket::stream_base::none(),
                                                           websocket::stream_base::none(), false});
        stream_.set_option(websocket::stream_base::decorator(
            [](websocket::response_type& response) { response.set(http::field::server, "Velloway"); }));
        stream_.async_accept(parser_.get(), [self = shared_from_this()](const error_code& error) {
            self->completion_({.error = error});
        });
    }

    PhoneSocket& socket_;
    /// Only writes the answer.
    websocket::stream<PhoneSocket&, false> stream_{socket_};
    std::shared_ptr<void> owner_;
    std::function<void(const HandshakeResult&)> completion_;
    beast::flat_buffer buffer_{maxHeaderBytes + 4096};
    http::request_parser<http::empty_body> parser_;
    std::string refusal_;
};

} // namespace

void acceptHandshake(PhoneSocket& socket, std::shared_ptr<void> owner,
                     std::function<void(const HandshakeResult&)> completion) {
    std::make_shared<Handshake>(socket, std::move(owner), std::move(completion))->start();
}

} // namespace velloway
