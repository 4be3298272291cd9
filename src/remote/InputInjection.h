#pragma once

#include "platform/InputEvents.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace velloway {

/// Turns a decoded remote command into synthetic events. Keeps no state and reports nothing: an event that
/// can't be made ends the operation in silence.
class InputInjection {
public:
    explicit InputInjection(InputEvents& events) : events_(&events) {}

    /// One press and release of a key. The modifiers, "cmd", "ctrl", "option" and "shift", exist only as flags
    /// on the two events; other names count for nothing. Server queue.
    void sendCGKey(std::uint16_t keyCode, std::span<const std::string_view> modifiers) const;
    /// Types a whole UTF-8 text with one press and release, however long it is. Server queue.
    void sendUnicodeText(std::string_view text) const;
    /// One press and release of a key that the platform numbers apart from the keyboard. Server queue.
    void sendSystemMediaKey(std::int32_t key) const;

    /// Moves the pointer by fractions of points, beyond the screen too. Main queue.
    void movePointer(double dx, double dy) const;
    /// One click where the pointer is: the right button for "right", the left one for any other text.
    /// Main queue.
    void click(std::string_view button) const;

private:
    void postEvent(std::int32_t key, bool down) const;

    InputEvents* events_;
};

} // namespace velloway
