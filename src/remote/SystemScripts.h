#pragma once

#include "platform/Log.h"
#include "platform/Scripts.h"

#include <string_view>

namespace velloway {

/// Runs a script and logs its error, if there is one. Main thread.
void runScript(Scripts& scripts, Log& log, const SystemScript& script);

/// How every failed script shows in the log, also when the failure is found later.
void logScriptError(Log& log, std::string_view error);

} // namespace velloway
