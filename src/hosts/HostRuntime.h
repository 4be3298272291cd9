#pragma once

#include "platform/Platform.h"

#include <memory>

namespace velloway {

class ApplicationDelegate;

/// One complete host and its event loop. Main thread.
class HostRuntime {
public:
    virtual ~HostRuntime() = default;

    /// Valid as long as the runtime.
    virtual Platform platform() = 0;
    /// Launches `delegate`, which must live until this returns, and runs until `terminate`. Returns the exit
    /// code of the process, with all queues ended: no job runs any more, and the core may be destroyed. What
    /// has come for files is written before.
    ///
    /// Does not return when the platform ends the process by itself, nor when a job of the server queue, such
    /// as the reading of a large file, or the writing of files is not finished soon; the process then exits
    /// with the same code.
    virtual int run(ApplicationDelegate& delegate) = 0;
    virtual void terminate() = 0;
};

/// How the process continues after `makeHost`.
struct HostStart {
    /// Null when the process should end at once.
    std::unique_ptr<HostRuntime> host;
    /// The exit code in that case: 0 when the program already runs in this session and has taken over what this
    /// start asked for. Every other reason has been written to standard error.
    int exitCode = 0;
};

/// The host that this program was built for. Must be called first in `main`. `argc` and `argv` must outlive it.
HostStart makeHost(int& argc, char** argv);

} // namespace velloway
