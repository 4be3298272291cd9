#include "hosts/mac/MacWorkspace.h"

#include "hosts/mac/MacText.h"

#import <AppKit/AppKit.h>

namespace velloway {

namespace {

std::string_view addressOf(SettingsPane pane) {
    switch (pane) {
    case SettingsPane::notifications:
        return "x-apple.systempreferences:com.apple.Notifications-Settings.extension";
    case SettingsPane::accessibility:
        break;
    }
    return "x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility";
}

} // namespace

void MacWorkspace::open(std::string_view address) {
    if (NSURL* url = [NSURL URLWithString:nsString(address)]) {
        [NSWorkspace.sharedWorkspace openURL:url];
    }
}

void MacWorkspace::openSettings(SettingsPane pane) {
    open(addressOf(pane));
}

void MacWorkspace::activateFileViewerSelecting(const std::filesystem::path& file) {
    NSURL* url = [NSURL fileURLWithPath:nsString(file.string())];
    [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ url ]];
}

} // namespace velloway
