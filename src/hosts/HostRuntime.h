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

/// The host that this program was built for. To be called first in `main`. `argc` and `argv` must outlive it.
///
/// Null when the program already runs in this session: what this start asked for was handed over to it, and the
/// process should end, with 0.
std::unique_ptr<HostRuntime> makeHost(int& argc, char** argv);

} // namespace velloway
