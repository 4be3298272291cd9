#include "hosts/mac/FakeSurface.h"

#include "hosts/mac/FakeMac.h"

#import <AppKit/AppKit.h>

namespace velloway::test {

namespace {

class FakeSurface final : public ContentSurface {
public:
    ~FakeSurface() override { fakeMac.note("surface gone"); }
    void* nativeView() override { return (__bridge void*)view_; }
    void setContent(std::shared_ptr<WindowContent>) override { fakeMac.note("surface shows something else"); }
    void setShown(bool isShown) override { fakeMac.note(isShown ? "surface shown" : "surface hidden"); }
    void setBackgroundPressed(std::function<void()> pressed) override { lastPressed = std::move(pressed); }

    static inline std::function<void()> lastPressed;

private:
    NSView* view_ = [[NSView alloc] init];
};

} // namespace

std::unique_ptr<ContentSurface> makeFakeSurface(std::shared_ptr<WindowContent>, MacWindows::Look look) {
    fakeMac.note(look == MacWindows::Look::opaque ? "opaque surface" : "translucent surface");
    return std::make_unique<FakeSurface>();
}

void pressFakeBackground() {
    FakeSurface::lastPressed();
}

} // namespace velloway::test
