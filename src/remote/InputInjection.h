#pragma once

#include "platform/InputEvents.h"

#include <span>
#include <string_view>

namespace velloway {

/// Puts the words of a remote command into those of the desktop. Keeps no state and reports nothing.
class InputInjection {
public:
    explicit InputInjection(InputEvents& events) : events_(&events) {}

    /// One press and release of a key. The modifiers are named "cmd", "ctrl", "option" and "shift"; other names
    /// count for nothing. Server queue.
    void sendCGKey(Key key, std::span<const std::string_view> modifiers) const;
    /// Types a whole UTF-8 text, however long it is. Server queue.
    void sendUnicodeText(std::string_view text) const { events_->typeText(text); }
    /// Server queue.
    void sendSystemMediaKey(MediaKey key) const { events_->pressMediaKey(key); }

    /// Main queue.
    void movePointer(double dx, double dy) const { events_->movePointer(dx, dy); }
    /// The right button for "right", the left one for any other text. Main queue.
    void click(std::string_view button) const;

private:
    InputEvents* events_;
};

} // namespace velloway
