#include "hosts/mac/MacScripts.h"

#include "hosts/mac/MacText.h"

namespace velloway {

std::optional<std::string> MacScripts::run(const SystemScript& script) {
    @autoreleasepool {
        NSDictionary<NSString*, id>* error = nil;
        [[[NSAppleScript alloc] initWithSource:nsString(script.sourceText)] executeAndReturnError:&error];
        return error != nil ? std::optional(stdString(error.description)) : std::nullopt;
    }
}

} // namespace velloway
