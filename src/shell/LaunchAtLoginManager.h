#pragma once

#include "platform/Log.h"
#include "platform/LoginItem.h"

namespace velloway {

/// The switch for starting at login. Keeps nothing: the system is asked each time. Main thread.
class LaunchAtLoginManager {
public:
    LaunchAtLoginManager(LoginItem& item, Log& log) : item_(item), log_(log) {}

    bool isEnabled() const;
    /// A failure is logged; the caller learns of it by reading `isEnabled` again.
    void setEnabled(bool enabled);

private:
    LoginItem& item_;
    Log& log_;
};

} // namespace velloway
