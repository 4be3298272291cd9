#include "hosts/qt/StandardOutputLog.h"

#include "platform/Fatal.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace velloway {

namespace {

/// Lines are short; a text that was once longer than this doesn't keep its memory.
constexpr std::size_t keptCapacity = std::size_t{64} * 1024;
constexpr std::size_t mostGathered = std::size_t{32} * 1024;
/// Lines of a turn that takes long come while it runs.
constexpr std::chrono::milliseconds longestGathering{2};
constexpr std::chrono::milliseconds longestWait{200};

thread_local bool isGathering = false;

/// The log whose lines must not be lost when the process aborts.
StandardOutputLog* ofProcess = nullptr;

void fillMissingStreams() {
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (::fcntl(stream, F_GETFD) == -1 && errno == EBADF) {
            // The lowest free number is this one: all below are in use.
            [[maybe_unused]] const int opened = ::open("/dev/null", O_RDWR);
        }
    }
}

std::size_t countLines(std::string_view text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

bool isRegularFile(int descriptor) {
    struct stat status {};
    return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

} // namespace

StandardOutputLog::StandardOutputLog() {
    fillMissingStreams();
    std::setbuf(stdout, nullptr);
    std::setbuf(stderr, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    isFile_ = isRegularFile(STDOUT_FILENO);
    ofProcess = this;
    setBeforeFatal([] { ofProcess->flush(); });
}

StandardOutputLog::~StandardOutputLog() {
    setBeforeFatal(nullptr);
    flush();
}

void StandardOutputLog::line(std::initializer_list<std::string_view> pieces) {
    const std::lock_guard lock(mutex_);
    if (gathered_.empty() && isGathering) {
        gatheredSince_ = Clock::now();
    }
    for (const std::string_view piece : pieces) {
        gathered_.append(piece);
    }
    gathered_.push_back('\n');
    if (!isGathering || gathered_.size() >= mostGathered || Clock::now() - gatheredSince_ > longestGathering) {
        writeGathered();
    }
}

void StandardOutputLog::gatherOnThisThread() {
    isGathering = true;
}

void StandardOutputLog::flush() {
    const std::lock_guard lock(mutex_);
    if (!gathered_.empty()) {
        writeGathered();
    }
}

void StandardOutputLog::writeGathered() {
    if (finishRest() && reportDropped()) {
        writeLines(gathered_);
    } else {
        dropped_ += countLines(gathered_);
    }
    gathered_.clear();
    if (gathered_.capacity() > keptCapacity) {
        gathered_ = {};
    }
}

bool StandardOutputLog::finishRest() {
    const std::string rest = std::exchange(rest_, {});
    rest_ = write(rest);
    return rest_.empty();
}

bool StandardOutputLog::reportDropped() {
    if (dropped_ == 0) {
        return true;
    }
    const std::size_t unreported = dropped_;
    const std::string report =
        "[Log] " + std::to_string(unreported) + " lines were dropped because nobody read them\n";
    dropped_ = 0;
    writeLines(report);
    if (dropped_ > 0) {
        dropped_ = unreported;
        return false;
    }
    return rest_.empty();
}

void StandardOutputLog::writeLines(std::string_view lines) {
    std::string_view left = write(lines);
    const std::size_t written = lines.size() - left.size();
    if (!left.empty() && written > 0 && lines[written - 1] != '\n') {
        const std::size_t end = std::min(left.find('\n') + 1, left.size());
        rest_ = left.substr(0, end);
        left.remove_prefix(end);
    }
    dropped_ += countLines(left);
}

std::string_view StandardOutputLog::write(std::string_view text) {
    while (!text.empty() && waitForRoom()) {
        // As much as surely fits into a pipe with room: the descriptor is shared with other programs, so that
        // it cannot be made one that never blocks.
        const std::size_t count = isFile_ ? text.size() : std::min<std::size_t>(text.size(), PIPE_BUF);
        const ssize_t written = ::write(STDOUT_FILENO, text.data(), count);
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR && errno != EAGAIN && errno != EWOULDBLOCK) {
            return {};
        }
    }
    return text;
}

/// Waits for a reader that is slow, but only until it has been found to be stuck.
bool StandardOutputLog::waitForRoom() {
    if (isFile_) {
        return true;
    }
    pollfd room{STDOUT_FILENO, POLLOUT, 0};
    int ready = 0;
    do {
        ready = ::poll(&room, 1, isStuck_ ? 0 : static_cast<int>(longestWait.count()));
    } while (ready < 0 && errno == EINTR);
    isStuck_ = ready == 0;
    return ready != 0;
}

} // namespace velloway
