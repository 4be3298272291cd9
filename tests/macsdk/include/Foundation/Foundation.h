// See dispatch/dispatch.h.
#pragma once

#include <CoreGraphics/CGGeometry.h>
#include <dispatch/dispatch.h>
#include <objc/objc.h>

typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef double NSTimeInterval;
typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;
#define NS_ENUM(type, name)                                                                                      \
    enum name : type name;                                                                                       \
    enum name : type
#define NS_OPTIONS(type, name)                                                                                   \
    type name;                                                                                                   \
    enum : type
#define NS_ASSUME_NONNULL_BEGIN _Pragma("clang assume_nonnull begin")
#define NS_ASSUME_NONNULL_END _Pragma("clang assume_nonnull end")
#define NS_DESIGNATED_INITIALIZER __attribute__((objc_designated_initializer))
/// The fakes make objects that the program must not make.
#ifdef MACSDK_FAKES
#define NS_UNAVAILABLE
#else
#define NS_UNAVAILABLE __attribute__((unavailable))
#endif
#define FOUNDATION_EXPORT extern "C"

NS_ASSUME_NONNULL_BEGIN

@class NSString, NSArray<ObjectType>, NSDictionary<KeyType, ObjectType>, NSError, NSURL;

@protocol NSObject
- (BOOL)isEqual:(nullable id)object;
- (BOOL)isKindOfClass:(Class)aClass;
- (BOOL)respondsToSelector:(SEL)aSelector;
@property(readonly) NSUInteger hash;
@property(readonly, copy) NSString* description;
@end
@protocol NSCopying
@end

__attribute__((objc_root_class))
@interface NSObject <NSObject> {
    Class isa;
}
+ (instancetype)alloc;
+ (instancetype)new;
- (instancetype)init NS_DESIGNATED_INITIALIZER;
- (void)dealloc;
- (id)copy;
+ (Class)class;
@end

FOUNDATION_EXPORT SEL NSSelectorFromString(NSString* aSelectorName);

enum : NSUInteger { NSUTF8StringEncoding = 4 };
@interface NSString : NSObject <NSCopying>
@property(readonly) NSUInteger length;
@property(nullable, readonly) const char* UTF8String;
- (nullable instancetype)initWithBytes:(const void*)bytes length:(NSUInteger)len encoding:(NSUInteger)encoding;
- (NSUInteger)lengthOfBytesUsingEncoding:(NSUInteger)encoding;
- (BOOL)isEqualToString:(NSString*)aString;
@end

@interface NSNumber : NSObject <NSCopying>
+ (NSNumber*)numberWithInteger:(NSInteger)value;
+ (NSNumber*)numberWithInt:(int)value;
@property(readonly) NSInteger integerValue;
@end

typedef struct {
    unsigned long state;
    id __unsafe_unretained _Nullable* _Nullable itemsPtr;
    unsigned long* _Nullable mutationsPtr;
    unsigned long extra[5];
} NSFastEnumerationState;
@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)len;
@end

@interface NSArray <__covariant ObjectType> : NSObject <NSCopying, NSFastEnumeration>
@property(readonly) NSUInteger count;
@property(nullable, readonly) ObjectType firstObject;
- (ObjectType)objectAtIndexedSubscript:(NSUInteger)idx;
- (BOOL)containsObject:(ObjectType)anObject;
+ (instancetype)arrayWithObjects:(const ObjectType _Nonnull[_Nonnull])objects count:(NSUInteger)cnt;
@end
@interface NSMutableArray <ObjectType> : NSArray <ObjectType>
- (void)addObject:(ObjectType)anObject;
@end
@interface NSSet <__covariant ObjectType> : NSObject <NSCopying, NSFastEnumeration>
@property(readonly) NSUInteger count;
+ (instancetype)setWithArray:(NSArray<ObjectType>*)array;
@end
@interface NSDictionary <__covariant KeyType, __covariant ObjectType> : NSObject <NSCopying>
+ (instancetype)dictionaryWithObjects:(const ObjectType _Nonnull[_Nullable])objects
                              forKeys:(const KeyType<NSCopying> _Nonnull[_Nullable])keys
                                count:(NSUInteger)cnt;
@end

@interface NSError : NSObject <NSCopying>
@property(readonly, copy) NSString* localizedDescription;
@end

@interface NSURL : NSObject <NSCopying>
+ (nullable instancetype)URLWithString:(NSString*)URLString;
+ (NSURL*)fileURLWithPath:(NSString*)path;
@property(nullable, readonly, copy) NSString* path;
@property(readonly, getter=isFileURL) BOOL fileURL;
@property(nullable, readonly, copy) NSString* absoluteString;
@end

typedef NSString* NSNotificationName;
@interface NSNotification : NSObject
@property(readonly, copy) NSNotificationName name;
@end
@class NSOperationQueue;
@interface NSNotificationCenter : NSObject
@property(class, readonly, strong) NSNotificationCenter* defaultCenter;
- (id<NSObject>)addObserverForName:(nullable NSNotificationName)name
                            object:(nullable id)obj
                             queue:(nullable NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification* notification))block;
- (void)removeObserver:(id)observer;
@end

@interface NSUserDefaults : NSObject
@property(class, readonly, strong) NSUserDefaults* standardUserDefaults;
- (NSInteger)integerForKey:(NSString*)defaultName;
- (void)setInteger:(NSInteger)value forKey:(NSString*)defaultName;
- (nullable id)objectForKey:(NSString*)defaultName;
@end

typedef NS_OPTIONS(uint64_t, NSActivityOptions){
    NSActivityIdleSystemSleepDisabled = 1ULL << 20,
    NSActivityUserInitiated = 0x00FFFFFFULL | NSActivityIdleSystemSleepDisabled,
    NSActivityUserInitiatedAllowingIdleSystemSleep =
        NSActivityUserInitiated & ~NSActivityIdleSystemSleepDisabled,
    NSActivityBackground = 0x000000FFULL};
@interface NSProcessInfo : NSObject
@property(class, readonly, strong) NSProcessInfo* processInfo;
- (id<NSObject>)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason;
- (void)endActivity:(id<NSObject>)activity;
@end

@interface NSHost : NSObject
+ (instancetype)currentHost;
@property(nullable, readonly, copy) NSString* localizedName;
@end

typedef NS_ENUM(NSUInteger, NSSearchPathDirectory){NSDocumentDirectory = 9, NSDownloadsDirectory = 15};
typedef NS_OPTIONS(NSUInteger, NSSearchPathDomainMask){NSUserDomainMask = 1};
@interface NSFileManager : NSObject
@property(class, readonly, strong) NSFileManager* defaultManager;
- (NSArray<NSURL*>*)URLsForDirectory:(NSSearchPathDirectory)directory
                           inDomains:(NSSearchPathDomainMask)domainMask;
@end

@interface NSLocale : NSObject
@property(class, readonly, copy) NSLocale* currentLocale;
@property(readonly, copy) NSString* localeIdentifier;
@end
@interface NSTimeZone : NSObject
@property(class, readonly, copy) NSTimeZone* localTimeZone;
@property(readonly, copy) NSString* name;
@end

@interface NSAppleEventDescriptor : NSObject
@end
@interface NSAppleScript : NSObject
- (nullable instancetype)initWithSource:(NSString*)source NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;
- (NSAppleEventDescriptor*)executeAndReturnError:
    (NSDictionary<NSString*, id>* _Nullable* _Nullable)errorInfo;
@end

NS_ASSUME_NONNULL_END
