#pragma once

#include "hosts/linux/input/InputBackend.h"
#include "hosts/linux/input/X11Keyboard.h"
#include "hosts/linux/input/X11Pointer.h"

namespace velloway {

/// Input by the X server's test extension. Keyboard and pointer have a connection each, as they are used on
/// different threads.
class X11Input : public InputBackend {
public:
    X11Input() : isReady_(keyboard_.isUsable() && pointer_.isUsable()) {}

    bool isReady() const override { return isReady_; }
    /// An X server never asks.
    void requestAccess() override {}
    void postKey(KeyStroke stroke, bool isDown) override;
    void postText(std::u16string text) override;
    std::optional<Point> pointerPosition() override;
    void movePointer(Point to) override;
    void postButton(MouseButton button, bool isDown) override;

private:
    X11Keyboard keyboard_;
    X11Pointer pointer_;
    const bool isReady_;
};

} // namespace velloway
