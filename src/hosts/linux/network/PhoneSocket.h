#pragma once

#include <boost/asio/basic_stream_socket.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/beast/core/bind_handler.hpp>
#include <boost/beast/websocket/stream.hpp>

#include <utility>

namespace velloway {

/// Named, so that the WebSocket layer finds our way of ending it below.
class PhoneSocket
    : public boost::asio::basic_stream_socket<boost::asio::ip::tcp, boost::asio::io_context::executor_type> {
public:
    using basic_stream_socket::basic_stream_socket;
};

/// Beast's own way waits for the far end without a bound. Here the sending half ends, and the session waits.
template <class Handler> void async_teardown(boost::beast::role_type, PhoneSocket& socket, Handler&& handler) {
    boost::system::error_code ignored;
    socket.shutdown(boost::asio::socket_base::shutdown_send, ignored);
    boost::asio::post(socket.get_executor(), boost::beast::bind_front_handler(std::forward<Handler>(handler),
                                                                              boost::system::error_code{}));
}

using PhoneStream = boost::beast::websocket::stream<PhoneSocket, false>;

} // namespace velloway
