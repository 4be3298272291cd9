#include "hosts/qt/StandardOutputLog.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <unistd.h>

namespace velloway {

namespace {

/// Lines are short; a text that was once longer than this doesn't keep its memory.
constexpr std::size_t keptCapacity = std::size_t{64} * 1024;

void fillMissingStreams() {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (::fcntl(stream, F_GETFD) == -1 && errno == EBADF) {
            // The lowest free number is this one: all below are in use.
            [[maybe_unused]] const int opened = ::open("/dev/null", O_RDWR);
        }
    }
}

void writeAll(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(STDOUT_FILENO, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            pollfd ready{STDOUT_FILENO, POLLOUT, 0};
            ::poll(&ready, 1, -1);
        } else if (errno != EINTR) {
            return;
        }
    }
}

} // namespace

StandardOutputLog::StandardOutputLog() {
    fillMissingStreams();
    std::setbuf(stdout, nullptr);
    std::setbuf(stderr, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
}

void StandardOutputLog::line(std::initializer_list<std::string_view> pieces) {
    thread_local std::string whole;
    whole.clear();
    for (std::string_view piece : pieces) {
        whole.append(piece);
    }
    whole.push_back('\n');
    {
        const std::lock_guard lock(mutex_);
        writeAll(whole);
    }
    if (whole.capacity() > keptCapacity) {
        whole = {};
    }
}

} // namespace velloway
