#include "hosts/mac/MacStatusItem.h"

#include "hosts/mac/MacText.h"
#include "platform/Fatal.h"

#import <AppKit/AppKit.h>

namespace velloway {

namespace {

NSImage* nativeImage(const StatusImage& image) {
    NSString* name = nsString(image.name);
    if (image.kind == StatusImage::Kind::asset) {
        return [NSImage imageNamed:name];
    }
    NSImageSymbolConfiguration* configuration =
        [NSImageSymbolConfiguration configurationWithPointSize:image.pointSize weight:NSFontWeightRegular];
    return [[NSImage imageWithSystemSymbolName:name
                      accessibilityDescription:nil] imageWithSymbolConfiguration:configuration];
}

SEL actionOf(const MenuItem& item) {
    switch (item.action) {
    case MenuItem::Action::call:
        return NSSelectorFromString(nsString(item.operation));
    case MenuItem::Action::terminate:
        return @selector(terminate:);
    case MenuItem::Action::none:
        break;
    }
    return nullptr;
}

/// An item that ends the process has no target: its action goes up to the application.
NSMenuItem* nativeItem(const MenuItem& item, id target) {
    if (item.isSeparator) {
        return [NSMenuItem separatorItem];
    }
    NSMenuItem* native = [[NSMenuItem alloc] initWithTitle:nsString(item.title)
                                                    action:actionOf(item)
                                             keyEquivalent:nsString(item.keyEquivalent)];
    native.tag = item.tag;
    native.enabled = item.isEnabled ? YES : NO;
    if (item.action == MenuItem::Action::call) {
        native.target = target;
    }
    return native;
}

} // namespace

struct MacStatusItem::Native {
    NSStatusItem* item;

    NSStatusItem* needed() const {
        if (item == nil) {
            fatal("there is no status item");
        }
        return item;
    }
};

MacStatusItem::MacStatusItem(MacDelegate& delegate)
    : delegate_(delegate), native_(std::make_unique<Native>()) {}

MacStatusItem::~MacStatusItem() {
    if (native_->item != nil) {
        [NSStatusBar.systemStatusBar removeStatusItem:native_->item];
    }
}

void MacStatusItem::create() {
    native_->item = [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];
}

bool MacStatusItem::hasButton() const {
    return native_->item.button != nil;
}

bool MacStatusItem::hasImage(const StatusImage& image) const {
    return nativeImage(image) != nil;
}

void MacStatusItem::setImage(const StatusImage& image) {
    NSImage* native = nativeImage(image);
    [native setTemplate:image.isTemplate ? YES : NO];
    native_->item.button.image = native;
}

void MacStatusItem::setMenu(const std::vector<MenuItem>& items) {
    @autoreleasepool {
        NSMenu* menu = [[NSMenu alloc] initWithTitle:@""];
        // Which items can be chosen is decided by the core alone.
        menu.autoenablesItems = NO;
        delegate_.menuActions.clear();
        for (const MenuItem& item : items) {
            if (item.action == MenuItem::Action::call) {
                delegate_.menuActions[item.operation] = item.onChosen;
            }
            [menu addItem:nativeItem(item, (__bridge id)delegate_.object())];
        }
        native_->needed().menu = menu;
    }
}

void MacStatusItem::setItemTitle(int tag, const std::string& title) {
    [native_->needed().menu itemWithTag:tag].title = nsString(title);
}

} // namespace velloway
