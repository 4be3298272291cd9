#include "hosts/mac/MacPasteboard.h"

#include "hosts/mac/MacText.h"

#import <AppKit/AppKit.h>

namespace velloway {

void MacPasteboard::clearContents() {
    [NSPasteboard.generalPasteboard clearContents];
}

bool MacPasteboard::setString(std::string_view text) {
    [NSPasteboard.generalPasteboard setString:nsString(text) forType:NSPasteboardTypeString];
    // Its answer says nothing about text: the pasteboard takes any.
    return true;
}

std::optional<std::string> MacPasteboard::string() const {
    NSString* text = [NSPasteboard.generalPasteboard stringForType:NSPasteboardTypeString];
    return text != nil ? std::optional(stdString(text)) : std::nullopt;
}

} // namespace velloway
