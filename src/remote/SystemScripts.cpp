#include "remote/SystemScripts.h"

#include <string>

namespace velloway {

namespace {

std::string sourceText(SystemScript::Action action, std::string_view address) {
    switch (action) {
    case SystemScript::Action::volumeUp:
        return "set volume output volume (output volume of (get volume settings) + 5)";
    case SystemScript::Action::volumeDown:
        return "set volume output volume (output volume of (get volume settings) - 5)";
    case SystemScript::Action::openLocation:
        return "open location \"" + std::string(address) + "\"";
    case SystemScript::Action::emptyTrash:
        return "tell application \"Finder\" to empty trash";
    case SystemScript::Action::lockScreen:
        return "tell application \"System Events\" to lock screen";
    case SystemScript::Action::sleep:
        return "tell application \"System Events\" to sleep";
    }
    return {};
}

} // namespace

SystemScript makeSystemScript(SystemScript::Action action, std::string_view address) {
    return {.action = action, .sourceText = sourceText(action, address), .address = std::string(address)};
}

void runScript(Scripts& scripts, Log& log, const SystemScript& script) {
    if (const auto error = scripts.run(script)) {
        logScriptError(log, *error);
    }
}

void logScriptError(Log& log, std::string_view error) {
    log.line({"[WebSocketServer] AppleScript Error: ", error});
}

} // namespace velloway
