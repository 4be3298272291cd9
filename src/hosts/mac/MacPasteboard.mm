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

void MacPasteboard::readString(std::function<void(std::optional<std::string>)> done) {
    NSString* text = [NSPasteboard.generalPasteboard stringForType:NSPasteboardTypeString];
    done(text != nil ? std::optional(stdString(text)) : std::nullopt);
}

} // namespace velloway
