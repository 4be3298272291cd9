#pragma once

#include "platform/Log.h"
#include "platform/Scripts.h"

#include <string_view>

namespace velloway {

/// The script of a system action. `address` counts for `openLocation` only; it goes into the source text as it
/// stands, so a double quote in it ends the string there.
SystemScript makeSystemScript(SystemScript::Action action, std::string_view address = {});

/// Runs a script and logs its error, if there is one. Main thread.
void runScript(Scripts& scripts, Log& log, const SystemScript& script);

/// How every failed script shows in the log, also when the failure is found later.
void logScriptError(Log& log, std::string_view error);

} // namespace velloway
