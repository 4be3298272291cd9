#include "hosts/mac/MacUserNotificationCenter.h"

#include "hosts/mac/MacText.h"

#import <UserNotifications/UserNotifications.h>

namespace velloway {

namespace {

UNUserNotificationCenter* center() {
    return [UNUserNotificationCenter currentNotificationCenter];
}

std::optional<std::string> textOf(NSError* error) {
    return error != nil ? std::optional(stdString(error.description)) : std::nullopt;
}

/// What is absent is never set: the platform's own default stands for it.
UNMutableNotificationContent* nativeContent(const NotificationContent& content) {
    UNMutableNotificationContent* native = [[UNMutableNotificationContent alloc] init];
    native.title = nsString(content.title);
    if (content.subtitle) {
        native.subtitle = nsString(*content.subtitle);
    }
    native.body = nsString(content.body);
    if (content.hasDefaultSound) {
        native.sound = UNNotificationSound.defaultSound;
    }
    if (content.threadIdentifier) {
        native.threadIdentifier = nsString(*content.threadIdentifier);
    }
    if (content.categoryIdentifier) {
        native.categoryIdentifier = nsString(*content.categoryIdentifier);
    }
    return native;
}

UNNotificationCategory* nativeCategory(const NotificationCategory& category) {
    NSMutableArray<UNNotificationAction*>* actions = [[NSMutableArray alloc] init];
    for (const TextInputNotificationAction& action : category.actions) {
        [actions addObject:[UNTextInputNotificationAction
                               actionWithIdentifier:nsString(action.identifier)
                                              title:nsString(action.title)
                                            options:UNNotificationActionOptionNone
                               textInputButtonTitle:nsString(action.textInputButtonTitle)
                               textInputPlaceholder:nsString(action.textInputPlaceholder)]];
    }
    return [UNNotificationCategory categoryWithIdentifier:nsString(category.identifier)
                                                  actions:actions
                                        intentIdentifiers:@[]
                                                  options:UNNotificationCategoryOptionNone];
}

AuthorizationStatus statusFrom(UNAuthorizationStatus status) {
    switch (status) {
    case UNAuthorizationStatusNotDetermined:
        return AuthorizationStatus::notDetermined;
    case UNAuthorizationStatusDenied:
        return AuthorizationStatus::denied;
    case UNAuthorizationStatusAuthorized:
        return AuthorizationStatus::authorized;
    case UNAuthorizationStatusProvisional:
        return AuthorizationStatus::provisional;
    case UNAuthorizationStatusEphemeral:
        return AuthorizationStatus::ephemeral;
    }
    return AuthorizationStatus::unknown;
}

UNAuthorizationOptions nativeOptions(unsigned options) {
    UNAuthorizationOptions native = 0;
    native |= (options & authorizationOptions::badge) != 0 ? UNAuthorizationOptionBadge : 0;
    native |= (options & authorizationOptions::sound) != 0 ? UNAuthorizationOptionSound : 0;
    native |= (options & authorizationOptions::alert) != 0 ? UNAuthorizationOptionAlert : 0;
    return native;
}

} // namespace

void MacUserNotificationCenter::setDelegate(UserNotificationCenterDelegate* delegate) {
    delegate_.notifications = delegate;
    center().delegate =
        delegate != nullptr ? (__bridge id<UNUserNotificationCenterDelegate>)delegate_.object() : nil;
}

void MacUserNotificationCenter::add(const NotificationRequest& request,
                                    std::function<void(const std::optional<std::string>& error)> completion) {
    @autoreleasepool {
        UNNotificationRequest* native =
            [UNNotificationRequest requestWithIdentifier:nsString(request.identifier)
                                                 content:nativeContent(request.content)
                                                 trigger:nil];
        void (^handler)(NSError*) = nil;
        if (completion) {
            handler = ^(NSError* error) {
              completion(textOf(error));
            };
        }
        [center() addNotificationRequest:native withCompletionHandler:handler];
    }
}

void MacUserNotificationCenter::removeDelivered(const std::vector<std::string>& identifiers) {
    @autoreleasepool {
        [center() removeDeliveredNotificationsWithIdentifiers:nsStrings(identifiers)];
    }
}

void MacUserNotificationCenter::removePending(const std::vector<std::string>& identifiers) {
    @autoreleasepool {
        [center() removePendingNotificationRequestsWithIdentifiers:nsStrings(identifiers)];
    }
}

void MacUserNotificationCenter::getAuthorizationStatus(std::function<void(AuthorizationStatus)> completion) {
    [center() getNotificationSettingsWithCompletionHandler:^(UNNotificationSettings* settings) {
      completion(statusFrom(settings.authorizationStatus));
    }];
}

void MacUserNotificationCenter::requestAuthorization(
    unsigned options, std::function<void(bool granted, const std::optional<std::string>& error)> completion) {
    [center() requestAuthorizationWithOptions:nativeOptions(options)
                            completionHandler:^(BOOL granted, NSError* error) {
                              completion(granted != NO, textOf(error));
                            }];
}

void MacUserNotificationCenter::setCategories(const std::vector<NotificationCategory>& categories) {
    @autoreleasepool {
        NSMutableArray<UNNotificationCategory*>* native = [[NSMutableArray alloc] init];
        for (const NotificationCategory& category : categories) {
            [native addObject:nativeCategory(category)];
        }
        [center() setNotificationCategories:[NSSet setWithArray:native]];
    }
}

} // namespace velloway
