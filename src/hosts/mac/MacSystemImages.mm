#include "hosts/mac/MacSystemImages.h"

#include "hosts/mac/MacText.h"

#import <AppKit/AppKit.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace velloway {

namespace {

/// The point size of a symbol, as a share of its box. A system symbol with a circle around it is about as wide
/// as its point size, and those of our own set, for which the views are laid out, fill about four fifths of
/// theirs. Symbols keep the sizes that they have beside each other; only those that are too wide for the box
/// are shrunk.
constexpr double symbolShare = 0.8;

/// While it lives, this thread draws into the context.
class CurrentContext {
public:
    explicit CurrentContext(NSGraphicsContext* _Nonnull context) {
        [NSGraphicsContext saveGraphicsState];
        NSGraphicsContext.currentContext = context;
    }
    ~CurrentContext() { [NSGraphicsContext restoreGraphicsState]; }
    CurrentContext(const CurrentContext&) = delete;
    CurrentContext& operator=(const CurrentContext&) = delete;
};

/// One point of it is one pixel. Its colours are those of the device, as are the numbers that the views paint
/// with: nothing on the way may convert them.
NSBitmapImageRep* _Nullable makeBitmap(PixelSize size) {
    return [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:nullptr
                                                   pixelsWide:size.width
                                                   pixelsHigh:size.height
                                                bitsPerSample:8
                                              samplesPerPixel:4
                                                     hasAlpha:YES
                                                     isPlanar:NO
                                               colorSpaceName:NSDeviceRGBColorSpace
                                                  bytesPerRow:0
                                                 bitsPerPixel:0];
}

std::optional<Bitmap> pixelsOf(NSBitmapImageRep* _Nonnull bitmap, PixelSize size) {
    const unsigned char* row = bitmap.bitmapData;
    if (row == nullptr) {
        return std::nullopt;
    }
    Bitmap pixels{.size = size};
    for (int y = 0; y < size.height; ++y) {
        pixels.rgba.insert(pixels.rgba.end(), row, row + 4 * size.width);
        row += bitmap.bytesPerRow;
    }
    return pixels;
}

/// In the middle of the box, from a whole pixel on, where edges stay sharp.
NSRect placeIn(PixelSize box, NSSize natural, double largestScale) {
    const double scale = std::min({largestScale, box.width / natural.width, box.height / natural.height});
    const NSSize size{natural.width * scale, natural.height * scale};
    return {{std::round((box.width - size.width) / 2), std::round((box.height - size.height) / 2)}, size};
}

/// Any thread: each has a current context of its own, and no other thread knows this bitmap.
std::optional<Bitmap> draw(NSImage* _Nullable image, double largestScale, PixelSize size,
                           NSColor* _Nullable tint) {
    const NSSize natural = image.size;
    if (natural.width <= 0 || natural.height <= 0) {
        return std::nullopt;
    }
    NSBitmapImageRep* bitmap = makeBitmap(size);
    if (bitmap == nil) {
        return std::nullopt;
    }
    NSGraphicsContext* context = [NSGraphicsContext graphicsContextWithBitmapImageRep:bitmap];
    if (context == nil) {
        return std::nullopt;
    }
    {
        const CurrentContext current(context);
        const NSRect everything{{0, 0}, {static_cast<CGFloat>(size.width), static_cast<CGFloat>(size.height)}};
        // Nobody promises that the memory is empty.
        NSRectFillUsingOperation(everything, NSCompositingOperationClear);
        [image drawInRect:placeIn(size, natural, largestScale)];
        if (tint != nil) {
            [tint set];
            NSRectFillUsingOperation(everything, NSCompositingOperationSourceIn);
        }
    }
    return pixelsOf(bitmap, size);
}

} // namespace

std::optional<Bitmap> MacSystemImages::symbol(std::string_view name, PixelSize size, const Tint& tint) const {
    @autoreleasepool {
        const double pointSize = symbolShare * std::min(size.width, size.height);
        NSImageSymbolConfiguration* configuration =
            [NSImageSymbolConfiguration configurationWithPointSize:pointSize weight:NSFontWeightRegular];
        NSImage* image = [[NSImage imageWithSystemSymbolName:nsString(name)
                                    accessibilityDescription:nil] imageWithSymbolConfiguration:configuration];
        NSColor* color = [NSColor colorWithDeviceRed:tint.red green:tint.green blue:tint.blue alpha:tint.alpha];
        return draw(image, 1, size, color);
    }
}

std::optional<Bitmap> MacSystemImages::applicationIcon(PixelSize size) const {
    @autoreleasepool {
        NSImage* icon = NSApplication.sharedApplication.applicationIconImage;
        return draw(icon, std::numeric_limits<double>::infinity(), size, nil);
    }
}

} // namespace velloway
