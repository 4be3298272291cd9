#pragma once

#include "platform/Log.h"

#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

namespace velloway {

/// Lines on standard output. Whoever reads them may go away at any time: from then on the lines are lost and
/// nothing else happens.
///
/// A reader that stays but does not read holds up the program once, for a fraction of a second. From then on
/// lines are dropped and counted, and one line reports how many when there is room again.
class StandardOutputLog : public Log {
public:
    /// Turns off the buffers of standard output and standard error, ignores the broken-pipe signal for the
    /// whole process, and fills a standard stream that the process was started without, so that no file or
    /// socket can end up under its number. Must be made before anything else.
    StandardOutputLog();

    ~StandardOutputLog() override;

    void line(std::initializer_list<std::string_view> pieces) override;

    /// From now on lines of this thread wait for `flush`, for a line of another thread, for a few
    /// milliseconds, or until there are many: a thread with an event loop of its own writes all lines of a turn
    /// by one system call.
    static void gatherOnThisThread();
    /// Writes the lines that wait. Any thread.
    void flush();

private:
    using Clock = std::chrono::steady_clock;

    void writeGathered();
    // Both return whether a line may follow.
    bool finishRest();
    bool reportDropped();
    /// Writes lines until one does not fit, and drops those behind it.
    void writeLines(std::string_view lines);
    /// Returns what of `text` does not fit.
    std::string_view write(std::string_view text);
    bool waitForRoom();

    std::mutex mutex_;
    /// Whole lines that have not been written yet.
    std::string gathered_;
    Clock::time_point gatheredSince_;
    /// A file never makes the writer wait for a reader.
    bool isFile_ = false;
    /// The reader has been waited for in vain.
    bool isStuck_ = false;
    /// The end of a line whose beginning has been written.
    std::string rest_;
    std::size_t dropped_ = 0;
};

} // namespace velloway
