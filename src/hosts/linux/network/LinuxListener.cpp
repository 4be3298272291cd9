#include "hosts/linux/network/LinuxListener.h"

#include "hosts/linux/network/LinuxConnection.h"
#include "hosts/linux/network/LinuxNetworkError.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ip/v6_only.hpp>
#include <boost/asio/steady_timer.hpp>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <optional>
#include <utility>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace velloway {

namespace net = boost::asio;
using boost::system::error_code;
using net::ip::tcp;

namespace {

/// Nobody waits longer for the event loop than this many accepts take.
constexpr int acceptsPerTurn = 64;

Endpoint describe(const tcp::endpoint& peer) {
    net::ip::address address = peer.address();
    if (address.is_v6() && address.to_v6().is_v4_mapped()) {
        address = net::ip::make_address_v4(net::ip::v4_mapped, address.to_v6());
    }
    const std::string host = address.to_string();
    const std::string port = std::to_string(peer.port());
    return {.host = host, .description = (address.is_v6() ? "[" + host + "]" : host) + ":" + port};
}

/// Whether there may be descriptors and memory again in a while.
bool isShortage(int code) {
    return code == EMFILE || code == ENFILE || code == ENOBUFS || code == ENOMEM;
}

/// The system gives the lowest number that is free, so a high one tells that few are left.
bool isAmongTheLast(int descriptor, std::size_t spare) {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) {
        return false;
    }
    return static_cast<rlim_t>(descriptor) >= limit.rlim_cur - std::min<rlim_t>(spare, limit.rlim_cur / 4);
}

bool meansNoIPv6(const error_code& error) {
    return error == net::error::address_family_not_supported || error.value() == EADDRNOTAVAIL ||
           error.value() == EPROTONOSUPPORT;
}

} // namespace

class LinuxListener::Session final : public QueueSession, public std::enable_shared_from_this<Session> {
public:
    Session(AsioQueue& madeOn, const LinuxNetworkLimits& bounds, const ListenerParameters& asked)
        : QueueSession(madeOn), limits_(bounds), parameters_(asked) {}
    ~Session() { leaveQueue(); }

    void start() override;
    void cancel() override;
    void abandon() override;
    void queueEnds() override;

    StateHandler stateHandler;
    NewConnectionHandler newConnectionHandler;
    std::atomic<std::uint16_t> boundPort = 0;

private:
    void open(const tcp& protocol, error_code& error);
    void listen(error_code& error);
    void waitForConnection();
    void acceptWhatIsThere();
    bool acceptOne();
    bool takeFromSystem();
    bool leavesEnough();
    void pauseAccepting();
    void fail(const error_code& error);
    void close();
    void report(ListenerState state, const std::optional<NetworkError>& error = {});

    LinuxNetworkLimits limits_;
    ListenerParameters parameters_;
    std::optional<tcp::acceptor> acceptor_;
    std::optional<net::steady_timer> pause_;
    /// An accepted socket that waits until there are descriptors to spare, or -1.
    int held_ = -1;
    tcp::endpoint heldPeer_;
    bool isIPv6_ = false;
    bool isStarted_ = false;
    bool isCancelled_ = false;
};

void LinuxListener::Session::start() {
    if (isStarted_ || isCancelled_ || isAbandoned) {
        return;
    }
    isStarted_ = true;
    error_code error;
    listen(error);
    if (error) {
        fail(error);
        return;
    }
    boundPort = acceptor_->local_endpoint(error).port();
    report(ListenerState::ready);
    waitForConnection();
}

void LinuxListener::Session::listen(error_code& error) {
    if (limits_.usesIPv6) {
        open(tcp::v6(), error);
        if (!error || !meansNoIPv6(error)) {
            return;
        }
        error = {};
    }
    open(tcp::v4(), error);
}

/// The descriptor is made here and not by Asio, so that programs started by this one never inherit the port.
void LinuxListener::Session::open(const tcp& protocol, error_code& error) {
    close();
    const int descriptor = ::socket(protocol.family(), SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, IPPROTO_TCP);
    if (descriptor < 0) {
        error.assign(errno, boost::system::system_category());
        return;
    }
    isIPv6_ = protocol == tcp::v6();
    acceptor_.emplace(loop(), protocol, descriptor);
    pause_.emplace(loop());
    if (isIPv6_) {
        acceptor_->set_option(net::ip::v6_only(false), error);
    }
    if (!error && parameters_.allowLocalEndpointReuse) {
        acceptor_->set_option(net::socket_base::reuse_address(true), error);
    }
    if (!error) {
        acceptor_->bind({protocol, parameters_.port}, error);
    }
    if (!error) {
        acceptor_->listen(net::socket_base::max_listen_connections, error);
    }
}

void LinuxListener::Session::waitForConnection() {
    if (!acceptor_) {
        return;
    }
    acceptor_->async_wait(tcp::acceptor::wait_read, [self = shared_from_this()](const error_code& error) {
        if (!error) {
            self->acceptWhatIsThere();
        }
    });
}

void LinuxListener::Session::acceptWhatIsThere() {
    for (int count = 0; count < acceptsPerTurn && acceptor_; ++count) {
        if (acceptOne()) {
            continue;
        }
        const int code = errno;
        if (isShortage(code)) {
            pauseAccepting();
            return;
        }
        if (code == EAGAIN || code == EWOULDBLOCK) {
            break;
        }
        if (code == EBADF || code == EINVAL || code == ENOTSOCK) {
            fail(error_code(code, boost::system::system_category()));
            return;
        }
        // Anything else means that the peer has gone already.
    }
    waitForConnection();
}

/// Returns false with the reason in `errno`.
bool LinuxListener::Session::acceptOne() {
    if (!takeFromSystem() || !leavesEnough()) {
        return false;
    }
    auto connection = std::make_shared<LinuxConnection>(queue, limits_, std::exchange(held_, -1), isIPv6_,
                                                        describe(heldPeer_));
    if (newConnectionHandler && !isAbandoned) {
        newConnectionHandler(std::move(connection));
    }
    return true;
}

bool LinuxListener::Session::takeFromSystem() {
    if (held_ >= 0) {
        return true;
    }
    socklen_t size = static_cast<socklen_t>(heldPeer_.capacity());
    held_ = ::accept4(acceptor_->native_handle(), heldPeer_.data(), &size, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (held_ < 0) {
        return false;
    }
    heldPeer_.resize(size);
    return true;
}

/// Moves the held socket to a lower number when there is one by now.
bool LinuxListener::Session::leavesEnough() {
    if (!isAmongTheLast(held_, limits_.spareDescriptors)) {
        return true;
    }
    const int lower = ::fcntl(held_, F_DUPFD_CLOEXEC, 0);
    if (lower < 0 || isAmongTheLast(lower, limits_.spareDescriptors)) {
        if (lower >= 0) {
            ::close(lower);
        }
        errno = EMFILE;
        return false;
    }
    ::close(std::exchange(held_, lower));
    return true;
}

/// The socket stays readable while a connection waits that cannot be taken, so waiting for it would spin.
void LinuxListener::Session::pauseAccepting() {
    pause_->expires_after(limits_.acceptPause);
    pause_->async_wait([self = shared_from_this()](const error_code& error) {
        if (!error) {
            self->acceptWhatIsThere();
        }
    });
}

void LinuxListener::Session::fail(const error_code& error) {
    close();
    report(ListenerState::failed, networkError(error));
}

void LinuxListener::Session::cancel() {
    if (isCancelled_) {
        return;
    }
    isCancelled_ = true;
    close();
    report(ListenerState::cancelled);
    stateHandler = nullptr;
    newConnectionHandler = nullptr;
}

void LinuxListener::Session::abandon() {
    isCancelled_ = true;
    close();
    stateHandler = nullptr;
    newConnectionHandler = nullptr;
}

void LinuxListener::Session::queueEnds() {
    hasQueue = false;
    close();
    stateHandler = nullptr;
    newConnectionHandler = nullptr;
}

void LinuxListener::Session::close() {
    if (held_ >= 0) {
        ::close(std::exchange(held_, -1));
    }
    acceptor_.reset();
    pause_.reset();
}

void LinuxListener::Session::report(ListenerState state, const std::optional<NetworkError>& error) {
    if (stateHandler && !isAbandoned) {
        stateHandler(state, error);
    }
}

LinuxListener::LinuxListener(AsioQueue& queue, const LinuxNetworkLimits& limits,
                             const ListenerParameters& parameters)
    : session_(std::make_shared<Session>(queue, limits, parameters)) {}

LinuxListener::~LinuxListener() = default;

void LinuxListener::setStateHandler(StateHandler handler) {
    session_->stateHandler = std::move(handler);
}

void LinuxListener::setNewConnectionHandler(NewConnectionHandler handler) {
    session_->newConnectionHandler = std::move(handler);
}

void LinuxListener::start(DispatchQueue& queue) {
    session_.start(queue);
}

void LinuxListener::cancel() {
    session_.cancel();
}

std::uint16_t LinuxListener::boundPort() const {
    return session_->boundPort;
}

} // namespace velloway
