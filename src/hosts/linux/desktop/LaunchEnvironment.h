#pragma once

#include "hosts/linux/desktop/ActivationToken.h"

namespace velloway {

/// What the desktop put into the environment of this start.
struct LaunchEnvironment {
    /// Nobody is waiting for a window: the session manager started the program at login, or the message bus
    /// did, to deliver a message that says what is wanted.
    bool isUnattended = false;
    ActivationToken token;

    /// Takes it out of the environment, so that programs started from here do not take it for theirs. To be
    /// called before the toolkit starts, which would take the token for its first window.
    static LaunchEnvironment take();
};

} // namespace velloway
