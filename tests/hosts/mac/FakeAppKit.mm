#include "hosts/mac/FakeMac.h"
#include "hosts/mac/FakeObject.h"
#include "hosts/mac/MacText.h"

#import <AppKit/AppKit.h>
#import <ServiceManagement/ServiceManagement.h>

using namespace velloway;
using namespace velloway::test;

extern "C" id objc_msgSend(id receiver, SEL selector, ...);

const NSNotificationName NSApplicationDidBecomeActiveNotification = @"became active";
const NSPasteboardType NSPasteboardTypeString = @"text";
const NSPasteboardType NSPasteboardTypeFileURL = @"file url";
const NSFontWeight NSFontWeightRegular = 0.25;

namespace {

NSStatusItem* statusItem;
__weak NSWindow* mainWindow;
void (^becameActive)(NSNotification*);

std::string textOf(NSRect rect) {
    return number(rect.origin.x) + " " + number(rect.origin.y) + " " + number(rect.size.width) + " " +
           number(rect.size.height);
}

void note(std::string call) {
    fakeMac.note(std::move(call));
}

void set(const char* property, double value) {
    note(std::string(property) + " = " + number(value));
}

} // namespace

@implementation NSResponder
@end

@implementation NSApplication
@synthesize delegate;
@dynamic applicationIconImage;
@synthesize servicesProvider = _servicesProvider;
+ (NSApplication*)sharedApplication {
    static NSApplication* const application = [[self alloc] init];
    return application;
}
- (void)setServicesProvider:(id)provider {
    note(provider != nil ? "services provider" : "no services provider");
    _servicesProvider = provider;
}
- (NSEvent*)currentEvent {
    return fakeMac.currentEvent ? [[NSEvent alloc] init] : nil;
}
- (NSImage*)applicationIconImage {
    return fakeMac.hasApplicationIcon ? [[NSImage alloc] init] : nil;
}
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy {
    note("activation policy " + std::to_string(policy));
    return YES;
}
- (void)activateIgnoringOtherApps:(BOOL)ignoring {
    note(ignoring ? "activate, ignoring others" : "activate");
}
- (void)terminate:(id)sender {
    note(sender == nil ? "terminate" : "terminate for somebody");
}
@end

@interface FakeActivationObserver : NSObject
@end
@implementation FakeActivationObserver
@end
@implementation NSNotification
@dynamic name;
@end
@implementation NSNotificationCenter
+ (NSNotificationCenter*)defaultCenter {
    static NSNotificationCenter* const center = [[self alloc] init];
    return center;
}
- (id<NSObject>)addObserverForName:(NSNotificationName)name
                            object:(id)object
                             queue:(NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification*))block {
    if ([name isEqualToString:NSApplicationDidBecomeActiveNotification] && object == nil && queue == nil) {
        becameActive = block;
    }
    return [[FakeActivationObserver alloc] init];
}
- (void)removeObserver:(id)observer {
    if ([observer isKindOfClass:[FakeActivationObserver class]]) {
        becameActive = nil;
    }
}
@end

// Views and windows

@implementation CALayer
@synthesize cornerRadius = _cornerRadius, masksToBounds = _masksToBounds;
- (void)setCornerRadius:(CGFloat)value {
    _cornerRadius = value;
    set("corner radius", value);
}
- (void)setMasksToBounds:(BOOL)value {
    _masksToBounds = value;
    set("masks to bounds", value);
}
@end
@implementation NSView {
    NSMutableArray<NSView*>* _subviews;
}
@synthesize frame, bounds, autoresizingMask, wantsLayer, layer = _layer;
- (CALayer*)layer {
    if (_layer == nil && self.wantsLayer) {
        _layer = [[CALayer alloc] init];
    }
    return _layer;
}
- (void)addSubview:(NSView*)view {
    if (_subviews == nil) {
        _subviews = [[NSMutableArray alloc] init];
    }
    [_subviews addObject:view];
    note("subview " + textOf(view.frame) + ", resizes " + std::to_string(view.autoresizingMask));
}
- (void)removeFromSuperview {
    note("view taken out");
}
@end
@implementation NSVisualEffectView
@synthesize material = _material, blendingMode = _blendingMode, state = _state;
- (void)setMaterial:(NSVisualEffectMaterial)value {
    set("material", value);
}
- (void)setBlendingMode:(NSVisualEffectBlendingMode)value {
    set("blending mode", value);
}
- (void)setState:(NSVisualEffectState)value {
    set("effect state", value);
}
@end
@implementation NSControl
@end
@implementation NSButton
@synthesize image;
@end
@implementation NSColor {
    double _red, _green, _blue, _alpha;
}
+ (NSColor*)clearColor {
    static NSColor* const color = [[self alloc] init];
    return color;
}
+ (NSColor*)colorWithDeviceRed:(CGFloat)red green:(CGFloat)green blue:(CGFloat)blue alpha:(CGFloat)alpha {
    NSColor* color = [[self alloc] init];
    color->_red = red;
    color->_green = green;
    color->_blue = blue;
    color->_alpha = alpha;
    return color;
}
- (void)set {
    setFakeColor(_red, _green, _blue, _alpha);
}
@end

@implementation NSWindow
@synthesize title = _title, delegate = _delegate, contentView = _contentView, minSize = _minSize,
            level = _level, collectionBehavior = _collectionBehavior,
            movableByWindowBackground = _movableByWindowBackground, hasShadow = _hasShadow,
            backgroundColor = _backgroundColor, opaque = _opaque,
            titlebarAppearsTransparent = _titlebarAppearsTransparent, titleVisibility = _titleVisibility,
            releasedWhenClosed = _releasedWhenClosed, hidesOnDeactivate = _hidesOnDeactivate,
            visible = _visible,
            preventsApplicationTerminationWhenModal = _preventsApplicationTerminationWhenModal;
- (instancetype)initWithContentRect:(NSRect)rect
                          styleMask:(NSWindowStyleMask)style
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)defer {
    if ((self = [super init])) {
        note(std::string([self isKindOfClass:[NSPanel class]] ? "panel " : "window ") + textOf(rect) +
             ", style " + std::to_string(style) + ", backing " + std::to_string(backing) +
             (defer ? ", deferred" : ""));
        _contentView = [[NSView alloc] init];
        _contentView.bounds = NSRect{{0, 0}, rect.size};
    }
    return self;
}
- (void)setTitle:(NSString*)value {
    note("title " + stdString(value));
}
- (void)setDelegate:(id<NSWindowDelegate>)value {
    _delegate = value;
    mainWindow = self;
    note("delegate");
}
- (void)setContentView:(NSView*)view {
    _contentView = view;
    note("content view");
}
- (void)setPreventsApplicationTerminationWhenModal:(BOOL)value {
    set("prevents the end", value);
}
- (BOOL)canBecomeKeyWindow {
    return [self isKindOfClass:[NSPanel class]] ? NO : YES;
}
- (BOOL)makeFirstResponder:(NSResponder*)responder {
    note([responder isKindOfClass:[NSView class]] ? "first responder" : "no first responder");
    return YES;
}
- (void)setMinSize:(NSSize)value {
    note("minimum size " + number(value.width) + " " + number(value.height));
}
- (void)setLevel:(NSWindowLevel)value {
    set("level", value);
}
- (void)setCollectionBehavior:(NSWindowCollectionBehavior)value {
    set("collection behavior", value);
}
- (void)setMovableByWindowBackground:(BOOL)value {
    set("movable by background", value);
}
- (void)setHasShadow:(BOOL)value {
    set("shadow", value);
}
- (void)setBackgroundColor:(NSColor*)value {
    note(value == NSColor.clearColor ? "clear background" : "another background");
}
- (void)setOpaque:(BOOL)value {
    set("opaque", value);
}
- (void)setTitlebarAppearsTransparent:(BOOL)value {
    set("transparent title bar", value);
}
- (void)setTitleVisibility:(NSWindowTitleVisibility)value {
    set("title visibility", value);
}
- (void)setReleasedWhenClosed:(BOOL)value {
    set("released when closed", value);
}
- (void)setHidesOnDeactivate:(BOOL)value {
    set("hides on deactivate", value);
}
- (void)setIsVisible:(BOOL)value {
    _visible = value;
    note(value ? "visible" : "not visible");
}
- (void)center {
    note("center");
}
- (void)setFrameOrigin:(NSPoint)point {
    note("origin " + number(point.x) + " " + number(point.y));
}
- (void)makeKeyAndOrderFront:(id)sender {
    _visible = YES;
    note(sender == nil ? "make key and order front" : "make key and order front for somebody");
}
- (void)orderFrontRegardless {
    _visible = YES;
    note("order front regardless");
}
- (void)orderOut:(id)sender {
    _visible = NO;
    note(sender == nil ? "order out" : "order out for somebody");
}
- (void)performWindowDragWithEvent:(NSEvent*)event {
    note(event != nil ? "drag" : "drag without an event");
}
@end
@implementation NSPanel
@synthesize floatingPanel = _floatingPanel, becomesKeyOnlyIfNeeded = _becomesKeyOnlyIfNeeded;
- (void)setFloatingPanel:(BOOL)value {
    set("floating", value);
}
- (void)setBecomesKeyOnlyIfNeeded:(BOOL)value {
    set("key only if needed", value);
}
@end
@implementation NSScreen
+ (NSScreen*)mainScreen {
    static NSScreen* const screen = [[self alloc] init];
    return fakeMac.hasScreen ? screen : nil;
}
- (NSRect)visibleFrame {
    return {{0, 50}, {1440, 825}};
}
@end
@implementation NSOpenPanel
@synthesize allowsMultipleSelection, canChooseDirectories;
+ (NSOpenPanel*)openPanel {
    return [[self alloc] initWithContentRect:NSRect {} styleMask:0 backing:NSBackingStoreBuffered defer:NO];
}
- (NSArray<NSURL*>*)URLs {
    NSMutableArray<NSURL*>* urls = [[NSMutableArray alloc] init];
    for (const std::string& file : *fakeMac.chosenFiles) {
        [urls addObject:[NSURL fileURLWithPath:nsString(file)]];
    }
    return urls;
}
- (void)beginWithCompletionHandler:(void (^)(NSModalResponse))handler {
    note(std::string("open panel") + (self.allowsMultipleSelection ? ", several" : "") +
         (self.canChooseDirectories ? ", folders" : ""));
    fakeMac.later.push_back([handler] { handler(fakeMac.chosenFiles ? NSModalResponseOK : 0); });
}
@end

// Status bar

@interface NSImage ()
@property(copy) NSString* name;
@property(nonatomic) double pointSize;
@property(nonatomic) BOOL isTinted;
@end
@implementation NSImageSymbolConfiguration {
@public
    double _pointSize;
    double _weight;
}
+ (instancetype)configurationWithPointSize:(CGFloat)pointSize weight:(NSFontWeight)weight {
    NSImageSymbolConfiguration* configuration = [[self alloc] init];
    configuration->_pointSize = pointSize;
    configuration->_weight = weight;
    return configuration;
}
@end
@implementation NSImage
@synthesize name, pointSize, isTinted;
@dynamic size;
+ (NSImage*)imageNamed:(NSString*)imageName {
    NSImage* image = fakeMac.hasAsset ? [[self alloc] init] : nil;
    image.name = imageName;
    return image;
}
+ (instancetype)imageWithSystemSymbolName:(NSString*)symbol accessibilityDescription:(NSString*)description {
    NSImage* image = fakeMac.hasSymbol ? [[self alloc] init] : nil;
    image.name = description == nil ? symbol : @"a described symbol";
    return image;
}
- (NSImage*)imageWithSymbolConfiguration:(NSImageSymbolConfiguration*)configuration {
    NSImage* image = [[NSImage alloc] init];
    image.name = configuration->_weight == NSFontWeightRegular ? self.name : @"of another weight";
    image.pointSize = configuration->_pointSize;
    return image;
}
- (void)setTemplate:(BOOL)isTemplate {
    self.isTinted = isTemplate;
}
- (BOOL)isTemplate {
    return self.isTinted;
}
- (NSSize)size {
    if (self.name == nil) {
        return {fakeMac.iconWidth, fakeMac.iconHeight};
    }
    return {self.pointSize * fakeMac.symbolWidth, self.pointSize * fakeMac.symbolHeight};
}
- (void)drawInRect:(NSRect)rect {
    const std::string drawn =
        self.name == nil ? "the icon" : stdString(self.name) + " " + number(self.pointSize);
    drawFakeImage(drawn, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
}
@end
@implementation NSStatusBarButton
- (void)setImage:(NSImage*)image {
    fakeMac.buttonImage = image == nil ? "" : stdString(image.name) + " " + number(image.pointSize);
    fakeMac.isButtonImageTemplate = [image isTemplate];
}
@end
@interface NSMenuItem ()
@property BOOL isSeparator;
@end
@implementation NSMenuItem
@synthesize title, keyEquivalent, target, action, tag, enabled, isSeparator;
- (instancetype)initWithTitle:(NSString*)itemTitle action:(SEL)itemAction keyEquivalent:(NSString*)key {
    if ((self = [super init])) {
        self.title = itemTitle;
        self.action = itemAction;
        self.keyEquivalent = key;
        self.enabled = YES;
    }
    return self;
}
- (instancetype)init {
    return [self initWithTitle:@"" action:nil keyEquivalent:@""];
}
+ (NSMenuItem*)separatorItem {
    NSMenuItem* item = [[self alloc] initWithTitle:@"" action:nil keyEquivalent:@""];
    item.isSeparator = YES;
    item.enabled = NO;
    return item;
}
@end
@implementation NSMenu {
@public
    NSMutableArray<NSMenuItem*>* _items;
}
@synthesize autoenablesItems;
- (instancetype)initWithTitle:(NSString*)__attribute__((unused))title {
    if ((self = [super init])) {
        _items = [[NSMutableArray alloc] init];
        self.autoenablesItems = YES;
    }
    return self;
}
- (instancetype)init {
    return [self initWithTitle:@""];
}
- (void)addItem:(NSMenuItem*)item {
    [_items addObject:item];
}
- (NSMenuItem*)itemWithTag:(NSInteger)wanted {
    for (NSMenuItem* item in _items) {
        if (item.tag == wanted) {
            return item;
        }
    }
    return nil;
}
@end
@implementation NSStatusItem {
    NSStatusBarButton* _button;
}
@synthesize menu;
- (NSStatusBarButton*)button {
    if (_button == nil && fakeMac.hasButton) {
        _button = [[NSStatusBarButton alloc] init];
    }
    return _button;
}
@end
@implementation NSStatusBar
+ (NSStatusBar*)systemStatusBar {
    static NSStatusBar* const bar = [[self alloc] init];
    return bar;
}
- (NSStatusItem*)statusItemWithLength:(CGFloat)length {
    note("status item of length " + number(length));
    statusItem = [[NSStatusItem alloc] init];
    return statusItem;
}
- (void)removeStatusItem:(NSStatusItem*)item {
    if (item == statusItem) {
        note("status item removed");
        statusItem = nil;
    }
}
@end

// Pasteboard, workspace, alert, events

@implementation NSPasteboard
+ (NSPasteboard*)generalPasteboard {
    static NSPasteboard* const pasteboard = [[self alloc] init];
    return pasteboard;
}
- (NSArray<NSPasteboardType>*)types {
    if (!fakeMac.pasteboardHasTypes) {
        return nil;
    }
    NSMutableArray<NSPasteboardType>* types = [[NSMutableArray alloc] init];
    if (fakeMac.pasteboardText) {
        [types addObject:NSPasteboardTypeString];
    }
    if (fakeMac.pasteboardFiles) {
        [types addObject:NSPasteboardTypeFileURL];
    }
    return types;
}
- (NSInteger)clearContents {
    note("pasteboard cleared");
    fakeMac.pasteboardText.reset();
    return 1;
}
- (BOOL)setString:(NSString*)string forType:(NSPasteboardType)type {
    if (![type isEqualToString:NSPasteboardTypeString]) {
        return NO;
    }
    note("pasteboard text");
    fakeMac.pasteboardText = stdString(string);
    return YES;
}
- (NSString*)stringForType:(NSPasteboardType)type {
    const bool isAsked = [type isEqualToString:NSPasteboardTypeString] && fakeMac.pasteboardText;
    return isAsked ? nsString(*fakeMac.pasteboardText) : nil;
}
- (NSArray*)readObjectsForClasses:(NSArray<Class>*)classes options:(NSDictionary*)options {
    if (!fakeMac.pasteboardIsReadable || options != nil || (id)classes.firstObject != (id)[NSURL class]) {
        return nil;
    }
    NSMutableArray<NSURL*>* urls = [[NSMutableArray alloc] init];
    for (const std::string& file : *fakeMac.pasteboardFiles) {
        const bool isAddress = file.find("://") != std::string::npos;
        [urls addObject:isAddress ? [NSURL URLWithString:nsString(file)]
                                  : [NSURL fileURLWithPath:nsString(file)]];
    }
    return urls;
}
@end
@implementation NSWorkspace
+ (NSWorkspace*)sharedWorkspace {
    static NSWorkspace* const workspace = [[self alloc] init];
    return workspace;
}
- (BOOL)openURL:(NSURL*)url {
    note("open " + stdString(url.absoluteString));
    return YES;
}
- (void)activateFileViewerSelectingURLs:(NSArray<NSURL*>*)urls {
    for (NSURL* url in urls) {
        note("reveal " + stdString(url.path));
    }
}
@end
@implementation NSAlert {
    std::string _buttons;
}
@synthesize messageText, informativeText, alertStyle, window = _window;
- (NSWindow*)window {
    if (_window == nil) {
        _window = [NSPanel alloc];
    }
    return _window;
}
- (NSButton*)addButtonWithTitle:(NSString*)title {
    _buttons += "[" + stdString(title) + "]";
    return [[NSButton alloc] init];
}
- (NSModalResponse)runModal {
    note("alert " + std::to_string(self.alertStyle) + " " + stdString(self.messageText) + "|" +
         stdString(self.informativeText) + "|" + _buttons);
    return fakeMac.modalAnswer;
}
@end

namespace {
/// The postable form: a counted object, as the platform's C functions expect it.
class SystemEvent : public FakeObject {};
} // namespace
@implementation NSEvent {
    CGEventRef _postable;
}
+ (NSEvent*)otherEventWithType:(NSEventType)type
                      location:(NSPoint)location
                 modifierFlags:(NSEventModifierFlags)flags
                     timestamp:(NSTimeInterval)time
                  windowNumber:(NSInteger)window
                       context:(NSGraphicsContext*)context
                       subtype:(short)subtype
                         data1:(NSInteger)data1
                         data2:(NSInteger)data2 {
    note("event " + std::to_string(type) + " at " + number(location.x) + " " + number(location.y) + ", flags " +
         std::to_string(flags) + ", time " + number(time) + ", window " + std::to_string(window) +
         (context == nil ? ", " : ", with a context, ") + "subtype " + std::to_string(subtype) + ", data " +
         std::to_string(data1) + " " + std::to_string(data2));
    NSEvent* event = fakeMac.makesEvents && fakeMac.eventThatFails-- != 0 ? [[self alloc] init] : nil;
    if (event != nil && fakeMac.eventsHavePostableForm) {
        event->_postable = CGEventCreate(nullptr);
    }
    return event;
}
- (CGEventRef)CGEvent {
    return _postable;
}
- (NSEventType)type {
    return static_cast<NSEventType>(*fakeMac.currentEvent);
}
- (void)dealloc {
    if (_postable != nullptr) {
        CFRelease(_postable);
    }
}
@end

// Scripts and login item

@implementation NSAppleEventDescriptor
@end
@implementation NSAppleScript
- (instancetype)init {
    return [super init];
}
- (instancetype)initWithSource:(NSString*)source {
    note("script " + stdString(source));
    return fakeMac.compilesScripts ? [super init] : nil;
}
- (NSAppleEventDescriptor*)executeAndReturnError:(NSDictionary<NSString*, id>* __autoreleasing*)error {
    note("executed");
    if (fakeMac.scriptError) {
        *error = @{@"NSAppleScriptErrorMessage" : nsString(*fakeMac.scriptError)};
    }
    return [[NSAppleEventDescriptor alloc] init];
}
@end
@interface NSError ()
@property(readwrite, copy) NSString* localizedDescription;
@end
@implementation NSError
@synthesize localizedDescription;
- (NSString*)description {
    return nsString("error: " + stdString(self.localizedDescription));
}
@end
namespace {
NSError* errorFrom(const std::optional<std::string>& text) {
    NSError* error = text ? [[NSError alloc] init] : nil;
    error.localizedDescription = nsString(text.value_or(""));
    return error;
}
} // namespace
@implementation SMAppService
+ (SMAppService*)mainAppService {
    static SMAppService* const service = [[self alloc] init];
    return service;
}
- (SMAppServiceStatus)status {
    return static_cast<SMAppServiceStatus>(fakeMac.loginItemStatus);
}
- (BOOL)becomes:(SMAppServiceStatus)status error:(NSError* __autoreleasing*)error {
    if (fakeMac.loginItemError) {
        *error = errorFrom(fakeMac.loginItemError);
        return NO;
    }
    fakeMac.loginItemStatus = status;
    return YES;
}
- (BOOL)registerAndReturnError:(NSError* __autoreleasing*)error {
    return [self becomes:SMAppServiceStatusEnabled error:error];
}
- (BOOL)unregisterAndReturnError:(NSError* __autoreleasing*)error {
    return [self becomes:SMAppServiceStatusNotRegistered error:error];
}
@end

// Facts

@interface NSURL ()
@property(readwrite, copy) NSString* path;
@property(readwrite, copy) NSString* absoluteString;
@property(readwrite) BOOL fileURL;
@end
@implementation NSURL
@synthesize path, absoluteString, fileURL;
+ (instancetype)URLWithString:(NSString*)string {
    if (stdString(string).find(' ') != std::string::npos) {
        return nil;
    }
    NSURL* url = [[self alloc] init];
    const std::string text = stdString(string);
    const std::size_t host = text.find("://");
    const std::size_t end = host == std::string::npos ? host : text.find('/', host + 3);
    url.absoluteString = string;
    url.path = nsString(end == std::string::npos ? "" : text.substr(end));
    return url;
}
+ (NSURL*)fileURLWithPath:(NSString*)path {
    NSURL* url = [[self alloc] init];
    url.path = path;
    url.absoluteString = nsString("file://" + stdString(path));
    url.fileURL = YES;
    return url;
}
@end
@implementation NSUserDefaults
+ (NSUserDefaults*)standardUserDefaults {
    static NSUserDefaults* const defaults = [[self alloc] init];
    return defaults;
}
- (NSInteger)integerForKey:(NSString*)key {
    const auto found = fakeMac.defaults.find(stdString(key));
    return found == fakeMac.defaults.end() ? 0 : found->second;
}
- (void)setInteger:(NSInteger)value forKey:(NSString*)key {
    fakeMac.defaults[stdString(key)] = value;
}
- (id)objectForKey:(NSString*)key {
    const auto found = fakeMac.defaults.find(stdString(key));
    return found == fakeMac.defaults.end() ? nil : [NSNumber numberWithInteger:found->second];
}
@end
@interface FakeActivity : NSObject
@end
@implementation FakeActivity
@end
@implementation NSProcessInfo
+ (NSProcessInfo*)processInfo {
    return [[self alloc] init];
}
- (id<NSObject>)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason {
    ++fakeMac.activities;
    fakeMac.activityOptions = options;
    fakeMac.activityReason = stdString(reason);
    return [[FakeActivity alloc] init];
}
- (void)endActivity:(id<NSObject>)activity {
    if ([activity isKindOfClass:[FakeActivity class]]) {
        --fakeMac.activities;
    }
}
@end
@implementation NSHost
+ (instancetype)currentHost {
    return [[self alloc] init];
}
- (NSString*)localizedName {
    return fakeMac.hostName ? nsString(*fakeMac.hostName) : nil;
}
@end
@implementation NSFileManager
+ (NSFileManager*)defaultManager {
    return [[self alloc] init];
}
- (NSArray<NSURL*>*)URLsForDirectory:(NSSearchPathDirectory)directory
                           inDomains:(NSSearchPathDomainMask)domains {
    if (!fakeMac.downloads || directory != NSDownloadsDirectory || domains != NSUserDomainMask) {
        return @[];
    }
    return @[ [NSURL fileURLWithPath:nsString(*fakeMac.downloads)] ];
}
@end
@implementation NSLocale
+ (NSLocale*)currentLocale {
    return [[self alloc] init];
}
- (NSString*)localeIdentifier {
    return @"de_AT";
}
@end
@implementation NSTimeZone
+ (NSTimeZone*)localTimeZone {
    return [[self alloc] init];
}
- (NSString*)name {
    return @"Europe/Vienna";
}
@end

// What the system does by itself

namespace velloway::test {

FakeMac fakeMac;

std::string number(double value) {
    std::string text = std::to_string(value);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
        text.pop_back();
    }
    return text;
}

void FakeMac::runLater() {
    const auto jobs = std::exchange(later, {});
    for (const auto& job : jobs) {
        job();
    }
}

std::vector<FakeMenuItem> fakeMenu() {
    std::vector<FakeMenuItem> items;
    NSMenu* menu = statusItem.menu;
    for (NSMenuItem* item in menu->_items) {
        const char* action = reinterpret_cast<const char*>(item.action);
        const bool canAct =
            action != nullptr && (item.target == nil || [item.target respondsToSelector:item.action] != NO);
        items.push_back({.title = stdString(item.title),
                         .keyEquivalent = stdString(item.keyEquivalent),
                         .tag = item.tag,
                         .isEnabled = menu.autoenablesItems ? canAct : item.enabled != NO,
                         .isSeparator = item.isSeparator != NO,
                         .action = action != nullptr ? action : "",
                         .hasTarget = item.target != nil});
    }
    return items;
}

bool clickFakeMenuItem(std::size_t index) {
    NSMenuItem* item = statusItem.menu->_items[index];
    id target = item.target;
    if (item.action == nullptr || ![target respondsToSelector:item.action]) {
        return false;
    }
    reinterpret_cast<void (*)(id, SEL, id)>(objc_msgSend)(target, item.action, item);
    return true;
}

void fakeLaunch() {
    [NSApplication.sharedApplication.delegate applicationDidFinishLaunching:[[NSNotification alloc] init]];
}

bool fakeReopen(bool hasVisibleWindows) {
    NSApplication* application = NSApplication.sharedApplication;
    return [application.delegate applicationShouldHandleReopen:application
                                             hasVisibleWindows:hasVisibleWindows ? YES : NO] != NO;
}

bool fakeLastWindowClosed() {
    NSApplication* application = NSApplication.sharedApplication;
    return [application.delegate applicationShouldTerminateAfterLastWindowClosed:application] != NO;
}

void fakeBecomeActive() {
    if (becameActive != nil) {
        becameActive([[NSNotification alloc] init]);
    }
}

bool fakeService() {
    id provider = NSApplication.sharedApplication.servicesProvider;
    SEL message = NSSelectorFromString(@"handleSendToAndroidService:userData:error:");
    if (![provider respondsToSelector:message]) {
        return false;
    }
    NSString* error = nil;
    using Service = void (*)(id, SEL, NSPasteboard*, NSString*, NSString * __autoreleasing*);
    NSString* __autoreleasing place = error;
    reinterpret_cast<Service>(objc_msgSend)(provider, message, NSPasteboard.generalPasteboard, @"", &place);
    return place == nil;
}

void fakeCloseMainWindow() {
    NSWindow* window = mainWindow;
    [window orderOut:nil];
    [window.delegate windowWillClose:[[NSNotification alloc] init]];
}

bool fakeDelegateAnswers(const std::string& selector) {
    return [(NSObject*)NSApplication.sharedApplication.delegate
               respondsToSelector:NSSelectorFromString(nsString(selector))] != NO;
}

void resetFakeMac() {
    statusItem = nil;
    NSApplication.sharedApplication.servicesProvider = nil;
    becameActive = nil;
    fakeMac = {};
}

} // namespace velloway::test
