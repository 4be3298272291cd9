#include "hosts/mac/FakeMac.h"
#include "hosts/mac/MacText.h"

#import <UserNotifications/UserNotifications.h>

using namespace velloway;
using namespace velloway::test;

@interface NSError ()
@property(readwrite, copy) NSString* localizedDescription;
@end
@interface UNNotificationRequest ()
@property(nonatomic, readwrite, copy) NSString* identifier;
@property(nonatomic, readwrite, copy) UNNotificationContent* content;
@end
@interface UNNotification ()
@property(nonatomic, readwrite, copy) UNNotificationRequest* request;
@end
@interface UNNotificationAction ()
@property(nonatomic, readwrite, copy) NSString* identifier;
@end
@interface UNTextInputNotificationAction ()
@property(nonatomic, copy) NSString* summary;
@end
@interface UNNotificationCategory ()
@property(nonatomic, copy) NSString* summary;
@end
@interface UNNotificationResponse ()
@property(nonatomic, readwrite, copy) UNNotification* notification;
@property(nonatomic, readwrite, copy) NSString* actionIdentifier;
@end
@interface UNTextInputNotificationResponse ()
@property(nonatomic, readwrite, copy) NSString* userText;
@end

@implementation UNNotificationSound
- (instancetype)init {
    return [super init];
}
+ (UNNotificationSound*)defaultSound {
    static UNNotificationSound* const sound = [[self alloc] init];
    return sound;
}
@end
@implementation UNNotificationContent
- (instancetype)init {
    return [super init];
}
@end
@implementation UNMutableNotificationContent
@synthesize title, subtitle, body, threadIdentifier, categoryIdentifier, sound;
- (instancetype)init {
    return [super init];
}
@end
@implementation UNNotificationRequest
- (instancetype)init {
    return [super init];
}
+ (instancetype)requestWithIdentifier:(NSString*)identifier
                              content:(UNNotificationContent*)content
                              trigger:(UNNotificationTrigger*)trigger {
    UNNotificationRequest* request = [[self alloc] init];
    request.identifier = (id)trigger == nil ? identifier : @"with a trigger";
    request.content = content;
    return request;
}
@end
@implementation UNNotification
- (instancetype)init {
    return [super init];
}
@end
@implementation UNNotificationAction
- (instancetype)init {
    return [super init];
}
@end
@implementation UNTextInputNotificationAction
+ (instancetype)actionWithIdentifier:(NSString*)identifier
                               title:(NSString*)title
                             options:(UNNotificationActionOptions)options
                textInputButtonTitle:(NSString*)buttonTitle
                textInputPlaceholder:(NSString*)placeholder {
    UNTextInputNotificationAction* action = [[self alloc] init];
    action.summary = nsString(stdString(identifier) + "/" + stdString(title) + "/" + std::to_string(options) +
                              "/" + stdString(buttonTitle) + "/" + stdString(placeholder));
    return action;
}
@end
@implementation UNNotificationCategory
- (instancetype)init {
    return [super init];
}
+ (instancetype)categoryWithIdentifier:(NSString*)identifier
                               actions:(NSArray<UNNotificationAction*>*)actions
                     intentIdentifiers:(NSArray<NSString*>*)intents
                               options:(UNNotificationCategoryOptions)options {
    std::string summary = stdString(identifier) + " options " + std::to_string(options) + " intents " +
                          std::to_string(intents.count);
    for (UNNotificationAction* action in actions) {
        summary += " action " + stdString(((UNTextInputNotificationAction*)action).summary);
    }
    UNNotificationCategory* category = [[self alloc] init];
    category.summary = nsString(summary);
    return category;
}
@end
@implementation UNNotificationResponse
- (instancetype)init {
    return [super init];
}
@end
@implementation UNTextInputNotificationResponse
@end
@implementation UNNotificationSettings
- (instancetype)init {
    return [super init];
}
- (UNAuthorizationStatus)authorizationStatus {
    return static_cast<UNAuthorizationStatus>(fakeMac.authorizationStatus);
}
@end

namespace {

std::string orUnset(NSString* text) {
    return text != nil ? stdString(text) : "(unset)";
}

NSError* currentError() {
    NSError* error = fakeMac.notificationError ? [[NSError alloc] init] : nil;
    error.localizedDescription = nsString(fakeMac.notificationError.value_or(""));
    return error;
}

UNUserNotificationCenter* center() {
    return [UNUserNotificationCenter currentNotificationCenter];
}

UNNotification* notificationFor(const std::string& identifier) {
    UNNotification* notification = [[UNNotification alloc] init];
    notification.request =
        [UNNotificationRequest requestWithIdentifier:nsString(identifier)
                                             content:[[UNMutableNotificationContent alloc] init]
                                             trigger:nil];
    return notification;
}

} // namespace

@implementation UNUserNotificationCenter
@synthesize delegate = _delegate;
- (instancetype)init {
    return [super init];
}
+ (UNUserNotificationCenter*)currentNotificationCenter {
    static UNUserNotificationCenter* const one = [[self alloc] init];
    return one;
}
- (void)setDelegate:(id<UNUserNotificationCenterDelegate>)delegate {
    _delegate = delegate;
    fakeMac.note(delegate != nil ? "notification delegate" : "no notification delegate");
}
- (void)requestAuthorizationWithOptions:(UNAuthorizationOptions)options
                      completionHandler:(void (^)(BOOL, NSError*))handler {
    fakeMac.note("request authorization " + std::to_string(options));
    fakeMac.later.push_back([handler] { handler(fakeMac.grantsAuthorization ? YES : NO, currentError()); });
}
- (void)setNotificationCategories:(NSSet<UNNotificationCategory*>*)categories {
    for (UNNotificationCategory* category in categories) {
        fakeMac.note("category " + stdString(category.summary));
    }
}
- (void)getNotificationSettingsWithCompletionHandler:(void (^)(UNNotificationSettings*))handler {
    fakeMac.note("notification settings");
    fakeMac.later.push_back([handler] { handler([[UNNotificationSettings alloc] init]); });
}
- (void)addNotificationRequest:(UNNotificationRequest*)request
         withCompletionHandler:(void (^)(NSError*))handler {
    UNNotificationContent* content = request.content;
    fakeMac.note("add " + stdString(request.identifier) + "|" + orUnset(content.title) + "|" +
                 orUnset(content.subtitle) + "|" + orUnset(content.body) + "|" +
                 orUnset(content.threadIdentifier) + "|" + orUnset(content.categoryIdentifier) + "|" +
                 (content.sound == UNNotificationSound.defaultSound ? "sound" : "silent"));
    if (handler != nil) {
        fakeMac.later.push_back([handler] { handler(currentError()); });
    }
}
- (void)removePendingNotificationRequestsWithIdentifiers:(NSArray<NSString*>*)identifiers {
    for (NSString* identifier in identifiers) {
        fakeMac.note("remove pending " + stdString(identifier));
    }
}
- (void)removeDeliveredNotificationsWithIdentifiers:(NSArray<NSString*>*)identifiers {
    for (NSString* identifier in identifiers) {
        fakeMac.note("remove delivered " + stdString(identifier));
    }
}
@end

namespace velloway::test {

int fakeAnswerNotification(const std::string& action, const std::string& identifier,
                           const std::optional<std::string>& text) {
    UNNotificationResponse* response =
        text ? [[UNTextInputNotificationResponse alloc] init] : [[UNNotificationResponse alloc] init];
    response.actionIdentifier = nsString(action);
    response.notification = notificationFor(identifier);
    if (text) {
        ((UNTextInputNotificationResponse*)response).userText = nsString(*text);
    }
    int completions = 0;
    int* const counter = &completions;
    [center().delegate userNotificationCenter:center()
               didReceiveNotificationResponse:response
                        withCompletionHandler:^{
                          ++*counter;
                        }];
    return completions;
}

unsigned long fakePresentNotification(const std::string& identifier) {
    unsigned long options = ~0ul;
    unsigned long* const place = &options;
    [center().delegate userNotificationCenter:center()
                      willPresentNotification:notificationFor(identifier)
                        withCompletionHandler:^(UNNotificationPresentationOptions wanted) {
                          *place = wanted;
                        }];
    return options;
}

} // namespace velloway::test
