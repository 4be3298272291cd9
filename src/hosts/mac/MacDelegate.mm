#include "hosts/mac/MacDelegate.h"

#include "hosts/mac/MacText.h"
#include "platform/Application.h"
#include "platform/UserNotificationCenter.h"

#import <AppKit/AppKit.h>
#import <UserNotifications/UserNotifications.h>

using namespace velloway;

@interface VellowayDelegate
    : NSObject <NSApplicationDelegate, NSWindowDelegate, UNUserNotificationCenterDelegate>
- (void)onMenuCall;
- (void)onMenuSms;
- (void)onMenuFileDrop;
- (void)onMenuHistory;
- (void)onMenuRemote;
- (void)onMenuClipboardHistory;
- (void)onMenuSettings;
- (void)onMenuInfo;
- (void)onMenuSendClipboard;
- (void)handleSendToAndroidService:(nonnull NSPasteboard*)pasteboard
                          userData:(nullable NSString*)userData
                             error:(NSString* _Nullable* _Nullable)error;
@end

namespace {

/// Something else than a file opens as a file of that name would: not at all.
std::string fileOf(NSURL* url) {
    return stdString(url.fileURL ? url.path : url.absoluteString);
}

ServicePasteboard contentOf(NSPasteboard* pasteboard) {
    NSArray<NSPasteboardType>* types = pasteboard.types;
    ServicePasteboard content{.hasTypes = types.count > 0,
                              .hasFileUrls = [types containsObject:NSPasteboardTypeFileURL] != NO};
    NSArray<NSURL*>* urls =
        content.hasFileUrls ? [pasteboard readObjectsForClasses:@[ [NSURL class] ] options:nil] : nil;
    if (urls != nil) {
        content.urls.emplace();
        for (NSURL* url in urls) {
            content.urls->emplace_back(fileOf(url));
        }
    }
    return content;
}

NotificationRequest requestFrom(UNNotificationRequest* request) {
    UNNotificationContent* content = request.content;
    return {.identifier = stdString(request.identifier),
            .content = {.title = stdString(content.title),
                        .subtitle = stdString(content.subtitle),
                        .body = stdString(content.body),
                        .hasDefaultSound = content.sound != nil,
                        .threadIdentifier = stdString(content.threadIdentifier),
                        .categoryIdentifier = stdString(content.categoryIdentifier)}};
}

UNNotificationPresentationOptions nativeOptions(unsigned options) {
    UNNotificationPresentationOptions native = 0;
    native |= (options & presentationOptions::badge) != 0 ? UNNotificationPresentationOptionBadge : 0;
    native |= (options & presentationOptions::sound) != 0 ? UNNotificationPresentationOptionSound : 0;
    native |= (options & presentationOptions::banner) != 0 ? UNNotificationPresentationOptionBanner : 0;
    return native;
}

} // namespace

@implementation VellowayDelegate {
@public
    MacDelegate* _calls;
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    if (_calls->application != nullptr) {
        _calls->application->applicationDidFinishLaunching();
    }
}

- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)sender {
    return _calls->application != nullptr &&
                   _calls->application->applicationShouldTerminateAfterLastWindowClosed()
               ? YES
               : NO;
}

- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender hasVisibleWindows:(BOOL)hasVisibleWindows {
    return _calls->application == nullptr ||
                   _calls->application->applicationShouldHandleReopen(hasVisibleWindows != NO)
               ? YES
               : NO;
}

- (void)choose:(const char*)selector __attribute__((objc_direct)) {
    const auto found = _calls->menuActions.find(std::string_view(selector));
    if (found != _calls->menuActions.end() && found->second) {
        // The menu may be replaced by what is chosen from it.
        const std::function<void()> chosen = found->second;
        chosen();
    }
}

- (void)onMenuCall {
    [self choose:"onMenuCall"];
}
- (void)onMenuSms {
    [self choose:"onMenuSms"];
}
- (void)onMenuFileDrop {
    [self choose:"onMenuFileDrop"];
}
- (void)onMenuHistory {
    [self choose:"onMenuHistory"];
}
- (void)onMenuRemote {
    [self choose:"onMenuRemote"];
}
- (void)onMenuClipboardHistory {
    [self choose:"onMenuClipboardHistory"];
}
- (void)onMenuSettings {
    [self choose:"onMenuSettings"];
}
- (void)onMenuInfo {
    [self choose:"onMenuInfo"];
}
- (void)onMenuSendClipboard {
    [self choose:"onMenuSendClipboard"];
}

- (void)handleSendToAndroidService:(NSPasteboard*)pasteboard
                          userData:(NSString*)userData
                             error:(NSString* __autoreleasing*)error {
    if (_calls->services != nullptr) {
        _calls->services->handleSendToAndroidService(contentOf(pasteboard));
    }
}

- (void)windowWillClose:(NSNotification*)notification {
    if (_calls->windowWillClose) {
        _calls->windowWillClose();
    }
}

- (void)userNotificationCenter:(UNUserNotificationCenter*)center
    didReceiveNotificationResponse:(UNNotificationResponse*)response
             withCompletionHandler:(void (^)(void))completionHandler {
    if (_calls->notifications == nullptr) {
        completionHandler();
        return;
    }
    NotificationResponse answer{.actionIdentifier = stdString(response.actionIdentifier),
                                .requestIdentifier = stdString(response.notification.request.identifier)};
    if ([response isKindOfClass:[UNTextInputNotificationResponse class]]) {
        answer.userText = stdString(((UNTextInputNotificationResponse*)response).userText);
    }
    _calls->notifications->didReceive(answer, [completionHandler] { completionHandler(); });
}

- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions))completionHandler {
    if (_calls->notifications == nullptr) {
        completionHandler(0);
        return;
    }
    _calls->notifications->willPresent(
        requestFrom(notification.request),
        [completionHandler](unsigned options) { completionHandler(nativeOptions(options)); });
}

@end

namespace velloway {

struct MacDelegate::Native {
    VellowayDelegate* object;
};

MacDelegate::MacDelegate() : native_(new Native{[[VellowayDelegate alloc] init]}) {
    native_->object->_calls = this;
}

MacDelegate::~MacDelegate() {
    delete native_;
}

void* MacDelegate::object() const {
    return (__bridge void*)native_->object;
}

} // namespace velloway
