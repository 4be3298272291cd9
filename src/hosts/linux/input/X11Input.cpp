#include "hosts/linux/input/X11Input.h"

#include <utility>

namespace velloway {

void X11Input::postKey(KeyStroke stroke, bool isDown) {
    if (isReady_) {
        keyboard_.postKey(std::move(stroke), isDown);
    }
}

void X11Input::postText(std::u16string text) {
    if (isReady_) {
        keyboard_.postText(std::move(text));
    }
}

std::optional<Point> X11Input::pointerPosition() {
    return isReady_ ? pointer_.position() : std::nullopt;
}

void X11Input::movePointer(Point to) {
    if (isReady_) {
        pointer_.moveTo(to);
    }
}

void X11Input::postButton(MouseButton button, bool isDown) {
    if (isReady_) {
        pointer_.postButton(button, isDown);
    }
}

} // namespace velloway
