#include "remote/SystemScripts.h"

namespace velloway {

void runScript(Scripts& scripts, Log& log, const SystemScript& script) {
    if (const auto error = scripts.run(script)) {
        logScriptError(log, *error);
    }
}

void logScriptError(Log& log, std::string_view error) {
    log.line({"[WebSocketServer] AppleScript Error: ", error});
}

} // namespace velloway
