#include "hosts/mac/MacScripts.h"

#include "hosts/mac/MacText.h"

namespace velloway {

namespace {

/// The address stands between the quotes as it came, so a double quote in it ends the string there.
std::string sourceText(const SystemScript& script) {
    switch (script.action) {
    case SystemScript::Action::volumeUp:
        return "set volume output volume (output volume of (get volume settings) + 5)";
    case SystemScript::Action::volumeDown:
        return "set volume output volume (output volume of (get volume settings) - 5)";
    case SystemScript::Action::openLocation:
        return "open location \"" + script.address + "\"";
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

std::optional<std::string> MacScripts::run(const SystemScript& script) {
    @autoreleasepool {
        NSDictionary<NSString*, id>* error = nil;
        [[[NSAppleScript alloc] initWithSource:nsString(sourceText(script))] executeAndReturnError:&error];
        return error != nil ? std::optional(stdString(error.description)) : std::nullopt;
    }
}

} // namespace velloway
