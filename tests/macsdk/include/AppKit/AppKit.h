// See dispatch/dispatch.h.
#pragma once

#import <Foundation/Foundation.h>

#include <CoreGraphics/CoreGraphics.h>

NS_ASSUME_NONNULL_BEGIN

@class NSApplication, NSEvent, NSImage, NSMenu, NSWindow;

@interface NSResponder : NSObject
@end

typedef NS_ENUM(NSInteger, NSApplicationActivationPolicy) {
    NSApplicationActivationPolicyRegular = 0,
    NSApplicationActivationPolicyAccessory = 1,
    NSApplicationActivationPolicyProhibited = 2
};
FOUNDATION_EXPORT const NSNotificationName NSApplicationDidBecomeActiveNotification;

@protocol NSApplicationDelegate <NSObject>
MACSDK_OPTIONAL
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)sender;
- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender hasVisibleWindows:(BOOL)hasVisibleWindows;
@end
@interface NSApplication : NSResponder
@property(class, readonly, strong) __kindof NSApplication* sharedApplication;
@property(nullable, weak) id<NSApplicationDelegate> delegate;
@property(nullable, strong) id servicesProvider;
@property(nullable, readonly, strong) NSEvent* currentEvent;
@property(null_resettable, strong) NSImage* applicationIconImage;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)activationPolicy;
- (void)activateIgnoringOtherApps:(BOOL)ignoreOtherApps MACSDK_BETWEEN(10.0, 14.0);
- (void)activate MACSDK_SINCE(14.0);
- (void)terminate:(nullable id)sender;
@end

typedef NS_OPTIONS(NSUInteger, NSAutoresizingMaskOptions) { NSViewWidthSizable = 2, NSViewHeightSizable = 16 };
@interface CALayer : NSObject
@property CGFloat cornerRadius;
@property BOOL masksToBounds;
@end
@interface NSView : NSResponder
@property NSRect frame;
@property NSRect bounds;
@property NSAutoresizingMaskOptions autoresizingMask;
@property BOOL wantsLayer;
@property(nullable, strong) CALayer* layer;
- (void)addSubview:(NSView*)view;
- (void)removeFromSuperview;
@end
typedef NS_ENUM(NSInteger, NSVisualEffectMaterial) { NSVisualEffectMaterialHUDWindow = 13 };
typedef NS_ENUM(NSInteger, NSVisualEffectBlendingMode) {
    NSVisualEffectBlendingModeBehindWindow = 0,
    NSVisualEffectBlendingModeWithinWindow = 1
};
typedef NS_ENUM(NSInteger, NSVisualEffectState) {
    NSVisualEffectStateFollowsWindowActiveState = 0,
    NSVisualEffectStateActive = 1
};
@interface NSVisualEffectView : NSView
@property NSVisualEffectMaterial material;
@property NSVisualEffectBlendingMode blendingMode;
@property NSVisualEffectState state;
@end
@interface NSControl : NSView
@end
@interface NSButton : NSControl
@property(nullable, strong) NSImage* image;
@end
@interface NSStatusBarButton : NSButton
@end

typedef CGFloat NSFontWeight;
FOUNDATION_EXPORT const NSFontWeight NSFontWeightRegular MACSDK_SINCE(10.11);
MACSDK_SINCE(11.0)
@interface NSImageSymbolConfiguration : NSObject <NSCopying>
+ (instancetype)configurationWithPointSize:(CGFloat)pointSize weight:(NSFontWeight)weight;
@end
@interface NSImage : NSObject <NSCopying>
+ (nullable NSImage*)imageNamed:(NSString*)name;
+ (nullable instancetype)imageWithSystemSymbolName:(NSString*)name
                          accessibilityDescription:(nullable NSString*)description MACSDK_SINCE(11.0);
- (nullable NSImage*)imageWithSymbolConfiguration:(NSImageSymbolConfiguration*)configuration MACSDK_SINCE(11.0);
// The property is named with a word of C++, so these two stand for it.
- (void)setTemplate:(BOOL)isTemplate;
- (BOOL)isTemplate;
@property NSSize size;
- (void)drawInRect:(NSRect)rect MACSDK_SINCE(10.9);
@end

typedef NSString* NSColorSpaceName;
FOUNDATION_EXPORT const NSColorSpaceName NSDeviceRGBColorSpace;
@interface NSImageRep : NSObject <NSCopying>
@end
@interface NSBitmapImageRep : NSImageRep
- (nullable instancetype)initWithBitmapDataPlanes:(unsigned char* _Nullable* _Nullable)planes
                                       pixelsWide:(NSInteger)width
                                       pixelsHigh:(NSInteger)height
                                    bitsPerSample:(NSInteger)bps
                                  samplesPerPixel:(NSInteger)spp
                                         hasAlpha:(BOOL)alpha
                                         isPlanar:(BOOL)isPlanar
                                   colorSpaceName:(NSColorSpaceName)colorSpaceName
                                      bytesPerRow:(NSInteger)rBytes
                                     bitsPerPixel:(NSInteger)pBits NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;
@property(nullable, readonly) unsigned char* bitmapData;
@property(readonly) NSInteger bytesPerRow;
@end
@interface NSGraphicsContext : NSObject
+ (nullable NSGraphicsContext*)graphicsContextWithBitmapImageRep:(NSBitmapImageRep*)bitmapRep;
@property(class, nullable, strong) NSGraphicsContext* currentContext;
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
@end
typedef NS_ENUM(NSUInteger, NSCompositingOperation) {
    NSCompositingOperationClear = 0,
    NSCompositingOperationCopy = 1,
    NSCompositingOperationSourceOver = 2,
    NSCompositingOperationSourceIn = 3
};
FOUNDATION_EXPORT void NSRectFillUsingOperation(NSRect rect, NSCompositingOperation op);

@interface NSMenuItem : NSObject <NSCopying>
+ (NSMenuItem*)separatorItem;
- (instancetype)initWithTitle:(NSString*)string
                       action:(nullable SEL)selector
                keyEquivalent:(NSString*)charCode NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;
@property(copy) NSString* title;
@property(copy) NSString* keyEquivalent;
@property(nullable, weak) id target;
@property(nullable) SEL action;
@property NSInteger tag;
@property(getter=isEnabled) BOOL enabled;
@end
@interface NSMenu : NSObject <NSCopying>
- (instancetype)initWithTitle:(NSString*)title NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;
- (void)addItem:(NSMenuItem*)newItem;
- (nullable NSMenuItem*)itemWithTag:(NSInteger)tag;
@property BOOL autoenablesItems;
@end
@interface NSStatusItem : NSObject
@property(nullable, readonly, strong) NSStatusBarButton* button;
@property(nullable, strong) NSMenu* menu;
@end
static const CGFloat NSVariableStatusItemLength = -1;
@interface NSStatusBar : NSObject
@property(class, readonly, strong) NSStatusBar* systemStatusBar;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem*)item;
@end

typedef NSString* NSPasteboardType;
FOUNDATION_EXPORT const NSPasteboardType NSPasteboardTypeString;
FOUNDATION_EXPORT const NSPasteboardType NSPasteboardTypeFileURL;
@interface NSPasteboard : NSObject
@property(class, readonly, strong) NSPasteboard* generalPasteboard;
@property(nullable, readonly, copy) NSArray<NSPasteboardType>* types;
- (NSInteger)clearContents;
- (BOOL)setString:(NSString*)string forType:(NSPasteboardType)dataType;
- (nullable NSString*)stringForType:(NSPasteboardType)dataType;
- (nullable NSArray*)readObjectsForClasses:(NSArray<Class>*)classArray
                                   options:(nullable NSDictionary<NSString*, id>*)options;
@end

typedef NSInteger NSWindowLevel;
static const NSWindowLevel NSStatusWindowLevel = 25;
typedef NS_OPTIONS(NSUInteger, NSWindowStyleMask) {
    NSWindowStyleMaskTitled = 1 << 0,
    NSWindowStyleMaskClosable = 1 << 1,
    NSWindowStyleMaskMiniaturizable = 1 << 2,
    NSWindowStyleMaskResizable = 1 << 3,
    NSWindowStyleMaskNonactivatingPanel = 1 << 7,
    NSWindowStyleMaskFullSizeContentView = 1 << 15
};
typedef NS_OPTIONS(NSUInteger, NSWindowCollectionBehavior) {
    NSWindowCollectionBehaviorCanJoinAllSpaces = 1 << 0,
    NSWindowCollectionBehaviorFullScreenAuxiliary = 1 << 8
};
typedef NS_ENUM(NSInteger, NSWindowTitleVisibility) { NSWindowTitleVisible = 0, NSWindowTitleHidden = 1 };
typedef NS_ENUM(NSUInteger, NSBackingStoreType) { NSBackingStoreBuffered = 2 };
@interface NSColor : NSObject <NSCopying>
@property(class, strong, readonly) NSColor* clearColor;
+ (NSColor*)colorWithDeviceRed:(CGFloat)red green:(CGFloat)green blue:(CGFloat)blue alpha:(CGFloat)alpha;
- (void)set;
@end
@protocol NSWindowDelegate <NSObject>
MACSDK_OPTIONAL
- (void)windowWillClose:(NSNotification*)notification;
@end
@interface NSWindow : NSResponder
- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backingStoreType
                              defer:(BOOL)flag NS_DESIGNATED_INITIALIZER;
- (instancetype)init NS_UNAVAILABLE;
@property(copy) NSString* title;
@property(nullable, weak) id<NSWindowDelegate> delegate;
@property(nullable, strong) NSView* contentView;
@property NSSize minSize;
@property NSWindowLevel level;
@property NSWindowCollectionBehavior collectionBehavior;
@property(getter=isMovableByWindowBackground) BOOL movableByWindowBackground;
@property BOOL hasShadow;
@property(copy, null_resettable) NSColor* backgroundColor;
@property(getter=isOpaque) BOOL opaque;
@property BOOL titlebarAppearsTransparent;
@property NSWindowTitleVisibility titleVisibility;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@property BOOL hidesOnDeactivate;
@property(readonly, getter=isVisible) BOOL visible;
@property(readonly) BOOL canBecomeKeyWindow;
@property BOOL preventsApplicationTerminationWhenModal;
- (BOOL)makeFirstResponder:(nullable NSResponder*)responder;
- (void)setIsVisible:(BOOL)flag;
- (void)center;
- (void)setFrameOrigin:(NSPoint)point;
- (void)makeKeyAndOrderFront:(nullable id)sender;
- (void)orderFrontRegardless;
- (void)orderOut:(nullable id)sender;
- (void)performWindowDragWithEvent:(NSEvent*)event;
@end
@interface NSPanel : NSWindow
@property(getter=isFloatingPanel) BOOL floatingPanel;
@property BOOL becomesKeyOnlyIfNeeded;
@end
@interface NSScreen : NSObject
@property(class, nullable, readonly, strong) NSScreen* mainScreen;
@property(readonly) NSRect visibleFrame;
@end

typedef NSInteger NSModalResponse;
static const NSModalResponse NSModalResponseOK = 1;
static const NSModalResponse NSAlertFirstButtonReturn = 1000;
@interface NSOpenPanel : NSPanel
+ (NSOpenPanel*)openPanel;
@property BOOL allowsMultipleSelection;
@property BOOL canChooseDirectories;
@property(readonly, copy) NSArray<NSURL*>* URLs;
- (void)beginWithCompletionHandler:(void (^)(NSModalResponse result))handler;
@end

typedef NS_ENUM(NSUInteger, NSEventType) {
    NSEventTypeLeftMouseDown = 1,
    NSEventTypeLeftMouseUp = 2,
    NSEventTypeLeftMouseDragged = 6,
    NSEventTypeSystemDefined = 14
};
typedef NS_OPTIONS(NSUInteger, NSEventModifierFlags) { NSEventModifierFlagCommand = 1 << 20 };
@interface NSEvent : NSObject <NSCopying>
+ (nullable NSEvent*)otherEventWithType:(NSEventType)type
                               location:(NSPoint)location
                          modifierFlags:(NSEventModifierFlags)flags
                              timestamp:(NSTimeInterval)time
                           windowNumber:(NSInteger)windowNumber
                                context:(nullable NSGraphicsContext*)unusedPassNil
                                subtype:(short)subtype
                                  data1:(NSInteger)data1
                                  data2:(NSInteger)data2;
@property(readonly) NSEventType type;
@property(nullable, readonly) CGEventRef CGEvent;
@end

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
- (BOOL)openURL:(NSURL*)url;
- (void)activateFileViewerSelectingURLs:(NSArray<NSURL*>*)fileURLs;
@end

typedef NS_ENUM(NSUInteger, NSAlertStyle) {
    NSAlertStyleWarning = 0,
    NSAlertStyleInformational = 1,
    NSAlertStyleCritical = 2
};
@interface NSAlert : NSObject
@property(copy) NSString* messageText;
@property(copy) NSString* informativeText;
@property NSAlertStyle alertStyle;
- (NSButton*)addButtonWithTitle:(NSString*)title;
@property(readonly, strong) NSWindow* window;
- (NSModalResponse)runModal;
@end

NS_ASSUME_NONNULL_END
