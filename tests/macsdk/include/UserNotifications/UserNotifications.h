// See dispatch/dispatch.h.
#pragma once

#import <Foundation/Foundation.h>

NS_ASSUME_NONNULL_BEGIN

typedef NS_OPTIONS(NSUInteger, UNAuthorizationOptions){
    UNAuthorizationOptionBadge = 1 << 0, UNAuthorizationOptionSound = 1 << 1, UNAuthorizationOptionAlert = 1 << 2};
typedef NS_OPTIONS(NSUInteger, UNNotificationPresentationOptions){
    UNNotificationPresentationOptionBadge = 1 << 0, UNNotificationPresentationOptionSound = 1 << 1,
    UNNotificationPresentationOptionBanner = 1 << 4};
typedef NS_OPTIONS(NSUInteger, UNNotificationActionOptions){UNNotificationActionOptionForeground = 1 << 2};
static const UNNotificationActionOptions UNNotificationActionOptionNone = 0;
typedef NS_OPTIONS(NSUInteger,
                   UNNotificationCategoryOptions){UNNotificationCategoryOptionCustomDismissAction = 1 << 0};
static const UNNotificationCategoryOptions UNNotificationCategoryOptionNone = 0;
typedef NS_ENUM(NSInteger, UNAuthorizationStatus){
    UNAuthorizationStatusNotDetermined = 0, UNAuthorizationStatusDenied = 1, UNAuthorizationStatusAuthorized = 2,
    UNAuthorizationStatusProvisional = 3, UNAuthorizationStatusEphemeral = 4};

@interface UNNotificationSound : NSObject <NSCopying>
@property(class, nonatomic, copy, readonly) UNNotificationSound* defaultSound;
- (instancetype)init NS_UNAVAILABLE;
@end

@interface UNNotificationContent : NSObject <NSCopying>
@property(nonatomic, readonly, copy) NSString* title;
@property(nonatomic, readonly, copy) NSString* subtitle;
@property(nonatomic, readonly, copy) NSString* body;
@property(nonatomic, readonly, copy) NSString* threadIdentifier;
@property(nonatomic, readonly, copy) NSString* categoryIdentifier;
@property(nonatomic, readonly, copy, nullable) UNNotificationSound* sound;
- (instancetype)init NS_UNAVAILABLE;
@end
@interface UNMutableNotificationContent : UNNotificationContent
@property(nonatomic, readwrite, copy) NSString* title;
@property(nonatomic, readwrite, copy) NSString* subtitle;
@property(nonatomic, readwrite, copy) NSString* body;
@property(nonatomic, readwrite, copy) NSString* threadIdentifier;
@property(nonatomic, readwrite, copy) NSString* categoryIdentifier;
@property(nonatomic, readwrite, copy, nullable) UNNotificationSound* sound;
- (instancetype)init;
@end

@class UNNotificationTrigger;
@interface UNNotificationRequest : NSObject <NSCopying>
@property(nonatomic, readonly, copy) NSString* identifier;
@property(nonatomic, readonly, copy) UNNotificationContent* content;
+ (instancetype)requestWithIdentifier:(NSString*)identifier
                              content:(UNNotificationContent*)content
                              trigger:(nullable UNNotificationTrigger*)trigger;
- (instancetype)init NS_UNAVAILABLE;
@end
@interface UNNotification : NSObject <NSCopying>
@property(nonatomic, readonly, copy) UNNotificationRequest* request;
- (instancetype)init NS_UNAVAILABLE;
@end

@interface UNNotificationAction : NSObject <NSCopying>
@property(nonatomic, readonly, copy) NSString* identifier;
- (instancetype)init NS_UNAVAILABLE;
@end
@interface UNTextInputNotificationAction : UNNotificationAction
+ (instancetype)actionWithIdentifier:(NSString*)identifier
                               title:(NSString*)title
                             options:(UNNotificationActionOptions)options
                textInputButtonTitle:(NSString*)textInputButtonTitle
                textInputPlaceholder:(NSString*)textInputPlaceholder;
@end
@interface UNNotificationCategory : NSObject <NSCopying>
+ (instancetype)categoryWithIdentifier:(NSString*)identifier
                               actions:(NSArray<UNNotificationAction*>*)actions
                     intentIdentifiers:(NSArray<NSString*>*)intentIdentifiers
                               options:(UNNotificationCategoryOptions)options;
- (instancetype)init NS_UNAVAILABLE;
@end

@interface UNNotificationResponse : NSObject <NSCopying>
@property(nonatomic, readonly, copy) UNNotification* notification;
@property(nonatomic, readonly, copy) NSString* actionIdentifier;
- (instancetype)init NS_UNAVAILABLE;
@end
@interface UNTextInputNotificationResponse : UNNotificationResponse
@property(nonatomic, readonly, copy) NSString* userText;
@end
@interface UNNotificationSettings : NSObject <NSCopying>
@property(nonatomic, readonly) UNAuthorizationStatus authorizationStatus;
- (instancetype)init NS_UNAVAILABLE;
@end

@class UNUserNotificationCenter;
@protocol UNUserNotificationCenterDelegate <NSObject>
MACSDK_OPTIONAL
- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:(void (^)(UNNotificationPresentationOptions options))completionHandler;
- (void)userNotificationCenter:(UNUserNotificationCenter*)center
    didReceiveNotificationResponse:(UNNotificationResponse*)response
             withCompletionHandler:(void (^)(void))completionHandler;
@end

@interface UNUserNotificationCenter : NSObject
@property(nonatomic, weak, nullable) id<UNUserNotificationCenterDelegate> delegate;
+ (UNUserNotificationCenter*)currentNotificationCenter;
- (instancetype)init NS_UNAVAILABLE;
- (void)requestAuthorizationWithOptions:(UNAuthorizationOptions)options
                      completionHandler:(void (^)(BOOL granted, NSError* _Nullable error))completionHandler;
- (void)setNotificationCategories:(NSSet<UNNotificationCategory*>*)categories;
- (void)getNotificationSettingsWithCompletionHandler:
    (void (^)(UNNotificationSettings* settings))completionHandler;
- (void)addNotificationRequest:(UNNotificationRequest*)request
         withCompletionHandler:(nullable void (^)(NSError* _Nullable error))completionHandler;
- (void)removePendingNotificationRequestsWithIdentifiers:(NSArray<NSString*>*)identifiers;
- (void)removeDeliveredNotificationsWithIdentifiers:(NSArray<NSString*>*)identifiers;
@end

NS_ASSUME_NONNULL_END
