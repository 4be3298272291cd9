#pragma once

#include "platform/Log.h"

#include <mutex>

namespace velloway {

/// Lines on standard output, each by one system call. Whoever reads them may go away at any time: from then on
/// the lines are lost and nothing else happens.
class StandardOutputLog : public Log {
public:
    /// Turns off the buffers of standard output and standard error, ignores the broken-pipe signal for the
    /// whole process, and fills a standard stream that the process was started without, so that no file or
    /// socket can end up under its number. To be made first of all.
    StandardOutputLog();

    void line(std::initializer_list<std::string_view> pieces) override;

private:
    std::mutex mutex_;
};

} // namespace velloway
