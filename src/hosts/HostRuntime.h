#pragma once

#include "platform/Platform.h"

#include <memory>

namespace velloway {

class ApplicationDelegate;

/// One host, whole, and the event loop under it. Main thread.
class HostRuntime {
public:
    virtual ~HostRuntime() = default;

    /// Stands as long as the runtime.
    virtual Platform platform() = 0;
    /// Launches `delegate`, which must live until the runtime has gone, and runs until `terminate`. Returns the
    /// answer of the process, unless the platform ends the process by itself.
    virtual int run(ApplicationDelegate& delegate) = 0;
    virtual void terminate() = 0;
};

/// How the process goes on after `makeHost`.
struct HostStart {
    /// Null when the process should end at once.
    std::unique_ptr<HostRuntime> host;
    /// What it then ends with: 0 when the program already runs in this session and has taken over what this
    /// start asked for. Anything else was told on standard error.
    int answer = 0;
};

/// The host that this program was built for. To be called first in `main`. `argc` and `argv` must outlive it.
HostStart makeHost(int& argc, char** argv);

} // namespace velloway
