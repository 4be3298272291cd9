#include "hosts/linux/input/X11Input.h"

#include "hosts/linux/input/Keysyms.h"

namespace velloway {

void X11Input::pressKey(Key key, Modifiers modifiers) {
    if (isReady_) {
        keyboard_->press(keysymsOf(key, modifiers));
    }
}

void X11Input::typeText(std::string_view text) {
    if (isReady_) {
        keyboard_->type(keysymsOf(text));
    }
}

void X11Input::pressMediaKey(MediaKey key) {
    if (isReady_) {
        const std::uint32_t keysym = keysymOf(key);
        keyboard_->pressIfClaimed(
            keysym, [press = needs_.pressUnclaimed, key, keysym, keyboard = std::weak_ptr(keyboard_)] {
                press(key, [keyboard, keysym](bool isDone) {
                    if (const auto stillThere = isDone ? nullptr : keyboard.lock()) {
                        stillThere->press({keysym});
                    }
                });
            });
    }
}

void X11Input::movePointer(double dx, double dy) {
    if (isReady_) {
        pointer_.moveBy(dx, dy);
    }
}

void X11Input::click(MouseButton button) {
    if (isReady_) {
        pointer_.click(button);
    }
}

} // namespace velloway
