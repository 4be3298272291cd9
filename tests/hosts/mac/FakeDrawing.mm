#include "hosts/mac/FakeMac.h"

#import <AppKit/AppKit.h>

#include <cmath>
#include <cstdint>
#include <vector>

using namespace velloway::test;

const NSColorSpaceName NSDeviceRGBColorSpace = @"device RGB";

namespace {

/// Meshed, alpha last. Rows are longer than their pixels, and the memory holds what was there before.
struct FakePixels {
    static constexpr NSInteger gap = 12;

    NSInteger width = 0;
    NSInteger height = 0;
    std::vector<std::uint8_t> bytes;

    NSInteger bytesPerRow() const { return 4 * width + gap; }
    /// `y` counts from the bottom, as in a context that is not flipped.
    std::uint8_t* at(NSInteger x, NSInteger y) {
        return bytes.data() + (height - 1 - y) * bytesPerRow() + 4 * x;
    }
    /// Calls `change` with each pixel whose middle is in the rectangle, and its height above the bottom.
    template <class Change> void within(NSRect rect, Change change) {
        for (NSInteger y = 0; y < height; ++y) {
            for (NSInteger x = 0; x < width; ++x) {
                const double right = x + 0.5 - rect.origin.x;
                const double up = y + 0.5 - rect.origin.y;
                if (right > 0 && right < rect.size.width && up > 0 && up < rect.size.height) {
                    change(at(x, y), up);
                }
            }
        }
    }
};

struct FakeColor {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;
};

NSGraphicsContext* currentContext;
std::vector<NSGraphicsContext*> savedContexts;
FakeColor currentColor;

std::uint8_t byte(double share) {
    return static_cast<std::uint8_t>(std::lround(share * 255));
}

std::string placeText(NSRect rect) {
    return number(rect.origin.x) + " " + number(rect.origin.y) + " " + number(rect.size.width) + " " +
           number(rect.size.height);
}

} // namespace

@implementation NSImageRep
@end
@implementation NSBitmapImageRep {
@public
    FakePixels _pixels;
}
- (instancetype)initWithBitmapDataPlanes:(unsigned char**)planes
                              pixelsWide:(NSInteger)width
                              pixelsHigh:(NSInteger)height
                           bitsPerSample:(NSInteger)bits
                         samplesPerPixel:(NSInteger)samples
                                hasAlpha:(BOOL)hasAlpha
                                isPlanar:(BOOL)isPlanar
                          colorSpaceName:(NSColorSpaceName)colorSpace
                             bytesPerRow:(NSInteger)rowBytes
                            bitsPerPixel:(NSInteger)pixelBits {
    fakeMac.note("bitmap " + std::to_string(width) + " " + std::to_string(height));
    const bool isKnown = planes == nullptr && bits == 8 && samples == 4 && hasAlpha && !isPlanar &&
                         colorSpace == NSDeviceRGBColorSpace && rowBytes == 0 && pixelBits == 0;
    if (!isKnown || !fakeMac.makesBitmaps || (self = [super init]) == nil) {
        return nil;
    }
    _pixels.width = width;
    _pixels.height = height;
    _pixels.bytes.assign(static_cast<std::size_t>(height * _pixels.bytesPerRow()), 0xAA);
    return self;
}
- (unsigned char*)bitmapData {
    return fakeMac.bitmapsHaveBytes ? _pixels.bytes.data() : nullptr;
}
- (NSInteger)bytesPerRow {
    return _pixels.bytesPerRow();
}
@end

@implementation NSGraphicsContext {
@public
    NSBitmapImageRep* _bitmap;
}
+ (NSGraphicsContext*)graphicsContextWithBitmapImageRep:(NSBitmapImageRep*)bitmap {
    if (!fakeMac.makesGraphicsContexts) {
        return nil;
    }
    NSGraphicsContext* context = [[self alloc] init];
    context->_bitmap = bitmap;
    return context;
}
+ (NSGraphicsContext*)currentContext {
    return currentContext;
}
+ (void)setCurrentContext:(NSGraphicsContext*)context {
    currentContext = context;
}
+ (void)saveGraphicsState {
    savedContexts.push_back(currentContext);
}
+ (void)restoreGraphicsState {
    currentContext = savedContexts.back();
    savedContexts.pop_back();
}
@end

void NSRectFillUsingOperation(NSRect rect, NSCompositingOperation operation) {
    fakeMac.note((operation == NSCompositingOperationClear      ? "clear "
                  : operation == NSCompositingOperationSourceIn ? "fill what is there "
                                                                : "fill otherwise ") +
                 placeText(rect));
    currentContext->_bitmap->_pixels.within(rect, [operation](std::uint8_t* pixel, double) {
        const double alpha = operation == NSCompositingOperationClear ? 0 : currentColor.alpha * pixel[3] / 255;
        pixel[0] = byte(currentColor.red * alpha);
        pixel[1] = byte(currentColor.green * alpha);
        pixel[2] = byte(currentColor.blue * alpha);
        pixel[3] = byte(alpha);
    });
}

namespace velloway::test {

void drawFakeImage(const std::string& name, double x, double y, double width, double height) {
    const NSRect place{{x, y}, {width, height}};
    fakeMac.note("draw " + name + " at " + placeText(place));
    currentContext->_bitmap->_pixels.within(place, [height](std::uint8_t* pixel, double up) {
        pixel[0] = pixel[1] = pixel[2] = 0;
        pixel[3] = up > height / 2 ? 255 : 128;
    });
}

void setFakeColor(double red, double green, double blue, double alpha) {
    currentColor = {red, green, blue, alpha};
}

bool hasFakeContext() {
    return currentContext != nil;
}

} // namespace velloway::test
