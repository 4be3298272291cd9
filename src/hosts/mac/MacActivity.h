#pragma once

#include <functional>
#include <memory>

namespace velloway {

/// Begins an activity of this process, which lasts for as long as the object returned. Any thread.
using BeginActivity = std::function<std::shared_ptr<void>()>;

/// Keeps the system from slowing the program down (App Nap), as it does with programs that have no window in
/// sight. The computer may still go to sleep when nobody uses it.
std::shared_ptr<void> beginConnectedActivity();

} // namespace velloway
