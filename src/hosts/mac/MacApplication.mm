#include "hosts/mac/MacApplication.h"

#include "hosts/mac/MacText.h"

#import <AppKit/AppKit.h>

namespace velloway {

namespace {

NSAlertStyle nativeStyle(Alert::Style style) {
    switch (style) {
    case Alert::Style::warning:
        break;
    case Alert::Style::informational:
        return NSAlertStyleInformational;
    case Alert::Style::critical:
        return NSAlertStyleCritical;
    }
    return NSAlertStyleWarning;
}

} // namespace

struct MacApplication::Native {
    id activationObserver;
};

MacApplication::MacApplication(MacDelegate& delegate)
    : delegate_(delegate), native_(std::make_unique<Native>()) {
    NSApplication.sharedApplication.delegate = (__bridge id<NSApplicationDelegate>)delegate.object();
    MacDelegate* calls = &delegate;
    native_->activationObserver =
        [NSNotificationCenter.defaultCenter addObserverForName:NSApplicationDidBecomeActiveNotification
                                                        object:nil
                                                         queue:nil
                                                    usingBlock:^(NSNotification*) {
                                                      if (calls->application != nullptr) {
                                                          calls->application->applicationDidBecomeActive();
                                                      }
                                                    }];
}

MacApplication::~MacApplication() {
    [NSNotificationCenter.defaultCenter removeObserver:native_->activationObserver];
}

void MacApplication::setServicesProvider(ServicesProvider* provider) {
    delegate_.services = provider;
    NSApplication.sharedApplication.servicesProvider =
        provider != nullptr ? (__bridge id)delegate_.object() : nil;
}

void MacApplication::setActivationPolicy(ActivationPolicy policy) {
    [NSApplication.sharedApplication setActivationPolicy:policy == ActivationPolicy::regular
                                                             ? NSApplicationActivationPolicyRegular
                                                             : NSApplicationActivationPolicyAccessory];
}

void MacApplication::activate() {
    [NSApplication.sharedApplication activateIgnoringOtherApps:YES];
}

int MacApplication::runModal(const Alert& alert) {
    NSAlert* native = [[NSAlert alloc] init];
    native.messageText = nsString(alert.messageText);
    native.informativeText = nsString(alert.informativeText);
    native.alertStyle = nativeStyle(alert.style);
    for (const std::string& title : alert.buttons) {
        [native addButtonWithTitle:nsString(title)];
    }
    // Nothing holds up the end of the process.
    native.window.preventsApplicationTerminationWhenModal = NO;
    return static_cast<int>([native runModal] - NSAlertFirstButtonReturn);
}

void MacApplication::terminate() {
    [NSApplication.sharedApplication terminate:nil];
}

} // namespace velloway
