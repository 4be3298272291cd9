#include "hosts/mac/MacWindows.h"

#include "hosts/mac/MacText.h"

#import <AppKit/AppKit.h>

namespace velloway {

namespace {

constexpr CGFloat cornerRadius = 12;

NSRect contentRect(const Size& size) {
    return {{0, 0}, {size.width, size.height}};
}

/// Lets the view fill `holder`, also when that changes its size.
void fill(NSView* holder, NSView* view) {
    view.frame = holder.bounds;
    view.autoresizingMask = NSViewWidthSizable | NSViewHeightSizable;
    [holder addSubview:view];
}

/// What shines through behind a panel.
NSVisualEffectView* makeBackground(const Size& size) {
    NSVisualEffectView* background = [[NSVisualEffectView alloc] init];
    background.frame = contentRect(size);
    background.bounds = background.frame;
    background.material = NSVisualEffectMaterialHUDWindow;
    background.blendingMode = NSVisualEffectBlendingModeBehindWindow;
    background.state = NSVisualEffectStateActive;
    background.wantsLayer = YES;
    background.layer.cornerRadius = cornerRadius;
    background.layer.masksToBounds = YES;
    return background;
}

/// Everything that is not the platform's own default, in the order in which it must be set: floating sets
/// another level. A running call leaves two properties as they are.
void apply(PanelKind kind, NSPanel* panel) {
    const bool isRinging = kind == PanelKind::ringingCall;
    panel.floatingPanel = YES;
    panel.level = NSStatusWindowLevel;
    if (isRinging) {
        panel.becomesKeyOnlyIfNeeded = YES;
    }
    panel.collectionBehavior =
        NSWindowCollectionBehaviorCanJoinAllSpaces | NSWindowCollectionBehaviorFullScreenAuxiliary;
    panel.movableByWindowBackground = YES;
    panel.hasShadow = YES;
    panel.backgroundColor = NSColor.clearColor;
    panel.opaque = NO;
    panel.titlebarAppearsTransparent = YES;
    panel.titleVisibility = NSWindowTitleHidden;
    panel.releasedWhenClosed = NO;
    if (isRinging) {
        panel.hidesOnDeactivate = NO;
    }
}

NSView* viewOf(ContentSurface& surface) {
    return (__bridge NSView*)surface.nativeView();
}

class MacWindow final : public Window {
public:
    MacWindow(NSWindow* window, std::shared_ptr<ContentSurface> surface)
        : window_(window), surface_(std::move(surface)) {}
    ~MacWindow() override {
        orderOut();
        // The view's maker expects to be there as long as the view is in a window.
        [viewOf(*surface_) removeFromSuperview];
    }

    bool isVisible() const override { return window_.visible != NO; }
    void center() override { [window_ center]; }
    void makeKeyAndOrderFront() override {
        surface_->setShown(true);
        if (window_.canBecomeKeyWindow) {
            // A view that was hidden since has lost the keys.
            [window_ makeFirstResponder:viewOf(*surface_)];
        }
        [window_ makeKeyAndOrderFront:nil];
    }
    void orderFrontRegardless() override {
        surface_->setShown(true);
        [window_ orderFrontRegardless];
    }
    void orderOut() override {
        [window_ orderOut:nil];
        surface_->setShown(false);
    }
    void setIsVisible(bool visible) override {
        surface_->setShown(visible);
        [window_ setIsVisible:visible ? YES : NO];
    }
    void setFrameOrigin(double x, double y) override { [window_ setFrameOrigin:NSPoint{x, y}]; }
    void setContent(std::shared_ptr<WindowContent> content) override {
        surface_->setContent(std::move(content));
    }

private:
    NSWindow* window_;
    std::shared_ptr<ContentSurface> surface_;
};

/// What a press at the background is handled by drags the panel, unless the button is already up again.
void drag(NSPanel* panel) {
    NSEvent* press = NSApplication.sharedApplication.currentEvent;
    if (press.type == NSEventTypeLeftMouseDown || press.type == NSEventTypeLeftMouseDragged) {
        [panel performWindowDragWithEvent:press];
    }
}

} // namespace

MacWindows::MacWindows(MacDelegate& delegate, MakeSurface makeSurface)
    : delegate_(delegate), makeSurface_(std::move(makeSurface)) {}

std::shared_ptr<Window> MacWindows::makeMainWindow(const MainWindowProperties& properties,
                                                   std::shared_ptr<WindowContent> content,
                                                   std::function<void()> onClose) {
    NSWindow* window =
        [[NSWindow alloc] initWithContentRect:contentRect(properties.size)
                                    styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                                              NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable
                                      backing:NSBackingStoreBuffered
                                        defer:NO];
    window.title = nsString(properties.title);
    const std::shared_ptr<ContentSurface> surface = makeSurface_(std::move(content), Look::opaque);
    fill(window.contentView, viewOf(*surface));
    delegate_.windowWillClose = [closed = std::weak_ptr(surface), onClose = std::move(onClose)] {
        if (const auto hidden = closed.lock()) {
            hidden->setShown(false);
        }
        onClose();
    };
    window.delegate = (__bridge id<NSWindowDelegate>)delegate_.object();
    window.releasedWhenClosed = NO;
    window.minSize = NSSize{properties.minimumSize.width, properties.minimumSize.height};
    return std::make_shared<MacWindow>(window, surface);
}

std::shared_ptr<Window> MacWindows::makePanel(const PanelProperties& properties,
                                              std::shared_ptr<WindowContent> content) {
    NSPanel* panel = [[NSPanel alloc]
        initWithContentRect:contentRect(properties.size)
                  styleMask:NSWindowStyleMaskNonactivatingPanel | NSWindowStyleMaskFullSizeContentView
                    backing:NSBackingStoreBuffered
                      defer:NO];
    apply(properties.kind, panel);
    auto surface = makeSurface_(std::move(content), Look::translucent);
    NSVisualEffectView* background = makeBackground(properties.size);
    fill(background, viewOf(*surface));
    panel.contentView = background;
    // A press that reaches the view no longer reaches the window under it, which would drag it.
    __weak NSPanel* dragged = panel;
    surface->setBackgroundPressed([dragged] { drag(dragged); });
    return std::make_shared<MacWindow>(panel, std::move(surface));
}

std::optional<Rect> MacWindows::mainScreenVisibleFrame() const {
    NSScreen* screen = NSScreen.mainScreen;
    if (screen == nil) {
        return std::nullopt;
    }
    const NSRect frame = screen.visibleFrame;
    return Rect{frame.origin.x, frame.origin.y, frame.size.width, frame.size.height};
}

void MacWindows::beginOpenPanel(const OpenPanelOptions& options,
                                std::function<void(std::optional<std::vector<std::filesystem::path>>)> done) {
    NSOpenPanel* panel = [NSOpenPanel openPanel];
    panel.allowsMultipleSelection = options.allowsMultipleSelection ? YES : NO;
    panel.canChooseDirectories = options.canChooseDirectories ? YES : NO;
    [panel beginWithCompletionHandler:^(NSModalResponse result) {
      if (result != NSModalResponseOK) {
          done(std::nullopt);
          return;
      }
      std::vector<std::filesystem::path> files;
      for (NSURL* url in panel.URLs) {
          files.emplace_back(stdString(url.path));
      }
      done(std::move(files));
    }];
}

} // namespace velloway
