#include "hosts/linux/desktop/TerminationSignals.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace velloway {

namespace {

constexpr std::array handled{SIGTERM, SIGINT, SIGHUP};

// A signal handler may do little more than write to a pipe; the event loop reads the other end.
std::array<int, 2> pipeEnds{-1, -1};

extern "C" void wake(int) {
    const int savedError = errno;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(pipeEnds[1], &byte, 1);
    errno = savedError;
}

void setHandlers(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int number : handled) {
        ::sigaction(number, &action, nullptr);
    }
}

} // namespace

TerminationSignals::TerminationSignals(std::function<void()> requested) {
    if (::pipe2(pipeEnds.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    notifier_ = std::make_unique<QSocketNotifier>(pipeEnds[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [requested = std::move(requested)] {
                         char byte = 0;
                         while (::read(pipeEnds[0], &byte, 1) > 0) {
                         }
                         requested();
                     });
    setHandlers(&wake);
}

TerminationSignals::~TerminationSignals() {
    if (!notifier_) {
        return;
    }
    setHandlers(SIG_DFL);
    notifier_.reset();
    ::close(pipeEnds[0]);
    ::close(pipeEnds[1]);
}

} // namespace velloway
