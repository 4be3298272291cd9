#include "phone/Terminal.h"

#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <stdexcept>

namespace velloway::phone {

Terminal::Terminal(Loop& loop, std::function<void(std::string)> bytes, std::function<void()> end)
    : loop_(loop), bytes_(std::move(bytes)), end_(std::move(end)) {
    if (pipe(wake_) != 0) {
        throw std::runtime_error("no pipe");
    }
    thread_ = std::thread([this] { read(); });
}

Terminal::~Terminal() {
    setRaw(false);
    close(wake_[1]);
    thread_.join();
    close(wake_[0]);
}

void Terminal::read() {
    pollfd sources[] = {{STDIN_FILENO, POLLIN, 0}, {wake_[0], POLLIN, 0}};
    char block[4096];
    while (poll(sources, 2, -1) > 0 && sources[1].revents == 0) {
        const ssize_t count = ::read(STDIN_FILENO, block, sizeof block);
        if (count <= 0) {
            loop_.post([this] { end_(); });
            return;
        }
        loop_.post([this, bytes = std::string(block, static_cast<std::size_t>(count))] { bytes_(bytes); });
    }
}

void Terminal::setRaw(bool isRaw) {
    termios settings{};
    if (isRaw == isRaw_ || tcgetattr(STDIN_FILENO, &settings) != 0) {
        return;
    }
    // Signals stay on, so that Ctrl-C always leads out.
    constexpr tcflag_t perLine = ICANON | ECHO;
    settings.c_lflag = isRaw ? settings.c_lflag & ~perLine : settings.c_lflag | perLine;
    if (isRaw) {
        settings.c_iflag &= ~static_cast<tcflag_t>(ICRNL);
    } else {
        settings.c_iflag |= ICRNL;
    }
    tcsetattr(STDIN_FILENO, TCSANOW, &settings);
    isRaw_ = isRaw;
}

} // namespace velloway::phone
