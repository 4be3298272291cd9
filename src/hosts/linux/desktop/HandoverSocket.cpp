#include "hosts/linux/desktop/HandoverSocket.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>

namespace velloway {

namespace {

/// More than any list of files that a command line can hold.
constexpr qsizetype longestRequest = qsizetype{8} * 1024 * 1024;
constexpr char answer = '!';

/// Empty when the path is too long for a socket.
QByteArray addressOf(const QByteArray& path) {
    sockaddr_un address{};
    if (path.size() >= static_cast<qsizetype>(sizeof address.sun_path)) {
        return {};
    }
    address.sun_family = AF_UNIX;
    std::copy(path.begin(), path.end(), address.sun_path);
    return {reinterpret_cast<const char*>(&address), sizeof address};
}

template <class Call> bool withAddress(Call call, int socket, const QByteArray& path) {
    const QByteArray address = addressOf(path);
    return !address.isEmpty() && call(socket, reinterpret_cast<const sockaddr*>(address.data()),
                                      static_cast<socklen_t>(address.size())) == 0;
}

bool isWhole(const QByteArray& lines) {
    return lines == "\n" || lines.endsWith("\n\n");
}

/// One start that hands something over. Deletes itself when that is done or the other end has gone.
class Visitor : public QObject {
public:
    Visitor(int socket, const HandoverSocket::Received& received, QObject* parent)
        : QObject(parent), notifier_(socket, QSocketNotifier::Read), received_(received) {
        connect(&notifier_, &QSocketNotifier::activated, this, [this] { read(); });
    }
    ~Visitor() override {
        notifier_.setEnabled(false);
        ::close(socket());
    }

private:
    int socket() const { return static_cast<int>(notifier_.socket()); }

    void read() {
        std::array<char, 4096> piece{};
        const ssize_t count = ::recv(socket(), piece.data(), piece.size(), 0);
        if (count < 0 && (errno == EAGAIN || errno == EINTR)) {
            return;
        }
        lines_.append(piece.data(), std::max<ssize_t>(count, 0));
        if (isWhole(lines_)) {
            ::send(socket(), &answer, 1, MSG_NOSIGNAL);
            received_(lines_);
        } else if (count > 0 && lines_.size() < longestRequest) {
            return;
        }
        notifier_.setEnabled(false);
        deleteLater();
    }

    QSocketNotifier notifier_;
    const HandoverSocket::Received& received_;
    QByteArray lines_;
};

bool sendAll(int socket, const QByteArray& lines) {
    for (qsizetype sent = 0; sent < lines.size();) {
        const ssize_t count =
            ::send(socket, lines.data() + sent, static_cast<std::size_t>(lines.size() - sent), MSG_NOSIGNAL);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            return false;
        }
        sent += count;
    }
    return true;
}

bool isAnswered(int socket) {
    char byte = 0;
    ssize_t count = 0;
    do {
        count = ::recv(socket, &byte, 1, 0);
    } while (count < 0 && errno == EINTR);
    return count == 1 && byte == answer;
}

} // namespace

HandoverSocket::HandoverSocket(Received received) : received_(std::move(received)) {}

HandoverSocket::~HandoverSocket() {
    if (listener_) {
        const int socket = static_cast<int>(listener_->socket());
        listener_.reset();
        ::close(socket);
        ::unlink(path_.constData());
    }
}

bool HandoverSocket::listen(const QString& path) {
    path_ = QFile::encodeName(path);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    ::unlink(path_.constData());
    // Nobody can connect before it listens, and by then it is the user's alone.
    if (socket < 0 || !withAddress(::bind, socket, path_) ||
        ::chmod(path_.constData(), S_IRUSR | S_IWUSR) != 0 || ::listen(socket, SOMAXCONN) != 0) {
        ::close(socket);
        return false;
    }
    listener_ = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Read);
    connect(listener_.get(), &QSocketNotifier::activated, this, [this] { accept(); });
    return true;
}

void HandoverSocket::accept() {
    const int socket =
        ::accept4(static_cast<int>(listener_->socket()), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK);
    if (socket >= 0) {
        new Visitor(socket, received_, this);
    }
}

HandoverSocket::Outcome HandoverSocket::handOver(const QString& path, const QByteArray& lines, int bound) {
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const timeval timeout{.tv_sec = bound / 1000, .tv_usec = suseconds_t{1000} * (bound % 1000)};
    ::setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO, &timeout, sizeof timeout);
    ::setsockopt(socket, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
    Outcome outcome = Outcome::nobodyListens;
    if (withAddress(::connect, socket, QFile::encodeName(path))) {
        outcome = sendAll(socket, lines) && isAnswered(socket) ? Outcome::answered : Outcome::notAnswered;
    }
    ::close(socket);
    return outcome;
}

} // namespace velloway
