#include "phone/Link.h"

#include "phone/LoopEngine.h"

#include <boost/asio/connect.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/websocket.hpp>

#include <algorithm>
#include <deque>
#include <utility>

namespace velloway::phone {

namespace beast = boost::beast;
namespace websocket = beast::websocket;
using tcp = boost::asio::ip::tcp;
using Socket = websocket::stream<beast::tcp_stream>;

namespace {

constexpr double firstPause = 0.2;
constexpr double longestPause = 5;
constexpr std::size_t largestMessage = 64 << 20;

struct Outgoing {
    std::string text;
    bool isBinary;
};

} // namespace

struct Link::State : std::enable_shared_from_this<State> {
    State(Loop& loop_, std::string host_, std::uint16_t port_, Habits habits_, Events events_)
        : loop(loop_),
          host(std::move(host_)),
          port(port_),
          habits(habits_),
          events(std::move(events_)),
          resolver(loop.engine().context) {}

    void dial();
    void connect(const tcp::resolver::results_type& addresses);
    void shakeHands();
    void enter();
    void read();
    void write();
    void sayGoodbye();
    void end(const std::string& reason);

    /// Wraps a handler of one connection: it does nothing once that connection has been given up.
    template <typename Handler> auto ofThisConnection(Handler handler) {
        return [self = shared_from_this(), mine = connection, handler](const beast::error_code& error,
                                                                       auto&&... rest) {
            if (mine == self->connection) {
                handler(error, std::forward<decltype(rest)>(rest)...);
            }
        };
    }

    Loop& loop;
    std::string host;
    std::uint16_t port;
    Habits habits;
    Events events;
    tcp::resolver resolver;

    std::shared_ptr<Socket> socket;
    beast::flat_buffer buffer;
    std::deque<Outgoing> outgoing;
    bool isUp = false;
    std::uint64_t connection = 0;
    double pause = firstPause;
    std::shared_ptr<void> retry;
    /// Set once the link is to close; what is still to be sent goes out before.
    std::function<void()> closed;
};

void Link::State::dial() {
    ++connection;
    socket = std::make_shared<Socket>(loop.engine().context);
    resolver.async_resolve(host, std::to_string(port),
                           ofThisConnection([this](const beast::error_code& error, const auto& addresses) {
                               if (error) {
                                   end("cannot find " + host + ": " + error.message());
                               } else {
                                   connect(addresses);
                               }
                           }));
}

void Link::State::connect(const tcp::resolver::results_type& addresses) {
    beast::get_lowest_layer(*socket).expires_after(std::chrono::seconds(10));
    beast::get_lowest_layer(*socket).async_connect(
        addresses, ofThisConnection([this, keep = socket](const beast::error_code& error, auto&&...) {
            if (error) {
                end("no connection: " + error.message());
            } else {
                shakeHands();
            }
        }));
}

void Link::State::shakeHands() {
    beast::error_code ignored;
    beast::get_lowest_layer(*socket).socket().set_option(tcp::no_delay(true), ignored);
    beast::get_lowest_layer(*socket).expires_never();
    auto limits = websocket::stream_base::timeout::suggested(beast::role_type::client);
    limits.idle_timeout = habits.pings ? std::chrono::seconds(40) : websocket::stream_base::none();
    limits.keep_alive_pings = habits.pings;
    socket->set_option(limits);
    socket->auto_fragment(false);
    socket->write_buffer_bytes(64 << 10);
    socket->read_message_max(largestMessage);
    const std::string name = host.find(':') == std::string::npos ? host : "[" + host + "]";
    socket->async_handshake(name + ":" + std::to_string(port), "/",
                            ofThisConnection([this, keep = socket](const beast::error_code& error) {
                                if (error) {
                                    end("no handshake: " + error.message());
                                } else {
                                    enter();
                                }
                            }));
}

void Link::State::enter() {
    isUp = true;
    pause = firstPause;
    read();
    events.isUp();
}

void Link::State::read() {
    socket->async_read(buffer,
                       ofThisConnection([this, keep = socket](const beast::error_code& error, std::size_t) {
                           if (error) {
                               end("the connection ended: " + error.message());
                               return;
                           }
                           std::string message = beast::buffers_to_string(buffer.data());
                           buffer.consume(buffer.size());
                           read();
                           events.received(std::move(message));
                       }));
}

void Link::State::write() {
    socket->binary(outgoing.front().isBinary);
    socket->async_write(boost::asio::buffer(outgoing.front().text),
                        ofThisConnection([this, keep = socket](const beast::error_code& error, std::size_t) {
                            if (error) {
                                end("could not send: " + error.message());
                                return;
                            }
                            outgoing.pop_front();
                            if (!outgoing.empty()) {
                                write();
                            } else if (closed) {
                                sayGoodbye();
                            } else {
                                events.isDrained();
                            }
                        }));
}

/// Handlers of the connection go quiet from here; the socket lives until the goodbye is answered.
void Link::State::sayGoodbye() {
    ++connection;
    isUp = false;
    socket->async_close(websocket::close_code::normal,
                        [self = shared_from_this(), keep = socket](const beast::error_code&) {
                            std::exchange(self->closed, nullptr)();
                        });
}

void Link::State::end(const std::string& reason) {
    ++connection;
    isUp = false;
    beast::error_code ignored;
    if (socket) {
        beast::get_lowest_layer(*socket).socket().close(ignored);
    }
    // The texts must outlive a write that the system has not given back yet.
    const auto old = std::make_shared<std::deque<Outgoing>>(std::move(outgoing));
    loop.post([old, keep = socket] {});
    outgoing.clear();
    buffer.consume(buffer.size());
    if (closed) {
        std::exchange(closed, nullptr)();
        return;
    }
    if (habits.reconnects) {
        retry = loop.after(pause, [this] { dial(); });
        pause = std::min(pause * 2, longestPause);
    }
    events.isDown(reason);
}

Link::Link(Loop& loop, std::string host, std::uint16_t port, Habits habits, Events events)
    : state_(std::make_shared<State>(loop, std::move(host), port, habits, std::move(events))) {}

Link::~Link() {
    ++state_->connection;
    state_->retry.reset();
}

void Link::dial() {
    state_->dial();
}

bool Link::send(std::string message, bool isBinary) {
    if (!state_->isUp) {
        return false;
    }
    state_->outgoing.push_back({std::move(message), isBinary});
    if (state_->outgoing.size() == 1) {
        state_->write();
    }
    return true;
}

bool Link::isUp() const {
    return state_->isUp;
}

void Link::cut() {
    if (state_->isUp) {
        state_->end("cut");
    }
}

void Link::close(std::function<void()> done) {
    state_->habits.reconnects = false;
    state_->retry.reset();
    if (!state_->isUp) {
        done();
        return;
    }
    state_->closed = std::move(done);
    if (state_->outgoing.empty()) {
        state_->sayGoodbye();
    }
}

} // namespace velloway::phone
