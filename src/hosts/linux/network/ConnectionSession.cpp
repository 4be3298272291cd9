#include "hosts/linux/network/ConnectionSession.h"

#include "hosts/linux/network/Handshake.h"
#include "hosts/linux/network/LinuxNetworkError.h"

#include <boost/asio/buffer.hpp>
#include <boost/beast/websocket/error.hpp>

#include <utility>

namespace velloway {

namespace net = boost::asio;
using boost::system::error_code;
using net::ip::tcp;

namespace {

constexpr std::size_t discardBytes = std::size_t{16} << 10;

error_code systemError(boost::system::errc::errc_t code) {
    return {static_cast<int>(code), boost::system::system_category()};
}

} // namespace

ConnectionSession::ConnectionSession(AsioQueue& madeOn, const LinuxNetworkLimits& limits, int descriptor,
                                     bool isIPv6, Endpoint peer)
    : QueueSession(madeOn),
      endpoint(std::move(peer)),
      limits_(limits),
      socket_(std::in_place, loop().get_executor(), isIPv6 ? tcp::v6() : tcp::v4(), descriptor),
      timer_(loop()),
      reader_(*socket_, loop(), limits, [this] { return weak_from_this().lock(); }, isAbandoned,
              {.ping = [this](auto payload, auto answered) { writer_.pong(payload, std::move(answered)); },
               .closed =
                   [this](std::uint16_t code) {
                       readerEnded(make_error_code(boost::beast::websocket::error::closed), code, true);
                   },
               .failed = [this](const error_code& error,
                                std::uint16_t code) { readerEnded(error, code, code != 0); }}),
      writer_(
          *socket_, limits.queuedBytes, [this] { return weak_from_this().lock(); }, isAbandoned,
          [this](const error_code& error) { fail(error); }) {}

void ConnectionSession::start() {
    if (phase_ != Phase::setup) {
        return;
    }
    phase_ = Phase::preparing;
    report(ConnectionState::preparing);
    error_code ignored;
    // Two answers in a row must not wait for the far end's delayed acknowledgement.
    socket_->set_option(tcp::no_delay(true), ignored);
    timer_->expires_after(limits_.handshake);
    timer_->async_wait([self = shared_from_this()](const error_code& error) {
        if (!error && self->phase_ == Phase::preparing) {
            self->fail(systemError(boost::system::errc::timed_out));
        }
    });
    acceptHandshake(*socket_, shared_from_this(), [this](const HandshakeResult& result) {
        if (phase_ == Phase::preparing) {
            handshakeEnded(result);
        }
    });
}

void ConnectionSession::handshakeEnded(const HandshakeResult& result) {
    if (result.wasRefused) {
        end(ConnectionState::failed, networkError(result.error));
        linger();
    } else if (result.error) {
        fail(result.error);
    } else {
        timer_->cancel();
        phase_ = Phase::ready;
        report(ConnectionState::ready);
        if (phase_ == Phase::ready) {
            reader_.start();
            writer_.start();
        }
    }
}

void ConnectionSession::receive(NetworkConnection::ReceiveCompletion completion) {
    if (phase_ != Phase::ended) {
        reader_.receive(std::move(completion));
        return;
    }
    queue.async([self = shared_from_this(), completion = std::move(completion)] {
        if (!self->isAbandoned) {
            completion({.error = networkError(systemError(boost::system::errc::not_connected))});
        }
    });
}

void ConnectionSession::send(SharedText text, NetworkConnection::SendCompletion completion) {
    if (phase_ == Phase::ended) {
        refuse(std::move(completion));
    } else if (!writer_.send(std::move(text), std::move(completion))) {
        failFromFullQueue();
    }
}

void ConnectionSession::send(std::shared_ptr<TextSeries> series, std::uint64_t index,
                             NetworkConnection::SendCompletion completion) {
    if (phase_ == Phase::ended) {
        refuse(std::move(completion));
    } else if (!writer_.send(std::move(series), index, std::move(completion))) {
        failFromFullQueue();
    }
}

// Neither calls anybody within the call.

void ConnectionSession::refuse(NetworkConnection::SendCompletion completion) {
    queue.async([self = shared_from_this(), completion = std::move(completion)] {
        if (completion && !self->isAbandoned) {
            completion(networkError(systemError(boost::system::errc::not_connected)));
        }
    });
}

void ConnectionSession::failFromFullQueue() {
    queue.async([self = shared_from_this()] { self->fail(systemError(boost::system::errc::no_buffer_space)); });
}

// The end.

void ConnectionSession::readerEnded(const error_code& error, std::uint16_t code, bool isToBeClosed) {
    end(ConnectionState::failed, networkError(error));
    if (isToBeClosed) {
        closeWith(code);
    } else {
        linger();
    }
}

/// The last frame waits for what is being written, but not for long.
void ConnectionSession::closeWith(std::uint16_t code) {
    closeAfter(limits_.closing);
    writer_.close(code, [self = shared_from_this()] { self->linger(); });
}

void ConnectionSession::cancel() {
    if (phase_ == Phase::ended) {
        return;
    }
    const bool wasReady = phase_ == Phase::ready;
    end(ConnectionState::cancelled, networkError(systemError(boost::system::errc::operation_canceled)));
    if (wasReady) {
        closeWith(closeCode::goingAway);
    } else {
        closeSocket();
    }
}

void ConnectionSession::fail(const error_code& error) {
    if (phase_ == Phase::ended) {
        return;
    }
    end(ConnectionState::failed, networkError(error));
    closeSocket();
}

void ConnectionSession::end(ConnectionState state, const NetworkError& error) {
    // They may hold the last reference to the port object, and go when all has been reported.
    const auto receive = reader_.stop();
    phase_ = Phase::ended;
    timer_->cancel();
    const auto unsent = writer_.stop();
    const auto handler = std::exchange(stateHandler, nullptr);
    if (receive && !isAbandoned) {
        receive({.error = error});
    }
    for (const auto& each : unsent) {
        for (std::uint64_t index = 0; index < each.count && each.completion && !isAbandoned; ++index) {
            each.completion(error);
        }
    }
    if (handler && !isAbandoned) {
        handler(state, state == ConnectionState::failed ? std::optional(error) : std::nullopt);
    }
}

void ConnectionSession::abandon() {
    // A connection that has ended may still be in its closing handshake.
    if (phase_ != Phase::ended) {
        fail(systemError(boost::system::errc::operation_canceled));
    }
}

void ConnectionSession::queueEnds() {
    const auto alive = weak_from_this().lock();
    phase_ = Phase::ended;
    hasQueue = false;
    socket_.reset();
    timer_.reset();
    const auto receive = reader_.stop();
    const auto unsent = writer_.stop();
    const auto handler = std::exchange(stateHandler, nullptr);
}

void ConnectionSession::closeSocket() {
    timer_->cancel();
    error_code ignored;
    socket_->close(ignored);
}

/// Closes the socket when the limit has passed, whatever the phase is then.
void ConnectionSession::closeAfter(std::chrono::milliseconds limit) {
    timer_->expires_after(limit);
    timer_->async_wait([self = shared_from_this()](const error_code& error) {
        if (!error) {
            self->closeSocket();
        }
    });
}

/// Gives the far end time to read our last bytes: closing over unread input would destroy them.
void ConnectionSession::linger() {
    error_code ignored;
    socket_->cancel(ignored);
    socket_->shutdown(net::socket_base::shutdown_send, ignored);
    reader_.clear();
    discarded_.resize(discardBytes);
    closeAfter(limits_.closing);
    discardInput();
}

void ConnectionSession::discardInput() {
    socket_->async_read_some(net::buffer(discarded_),
                             [self = shared_from_this()](const error_code& error, std::size_t) {
                                 if (error) {
                                     self->closeSocket();
                                 } else {
                                     self->discardInput();
                                 }
                             });
}

void ConnectionSession::report(ConnectionState state) {
    if (stateHandler && !isAbandoned) {
        stateHandler(state, std::nullopt);
    }
}

} // namespace velloway
