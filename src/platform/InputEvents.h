#pragma once

#include <string_view>

namespace velloway {

/// The keys of the keyboard that the product presses.
enum class Key { returnKey, deleteBackward, escape, command, option, control, left, right, up, down };

/// The keys that keyboards have for the computer itself.
enum class MediaKey {
    soundUp,
    soundDown,
    mute,
    screenBrightnessUp,
    screenBrightnessDown,
    keyboardLightUp,
    keyboardLightDown,
    playPause,
    nextTrack,
    previousTrack
};

/// What is held while a key is pressed.
struct Modifiers {
    bool command = false;
    bool control = false;
    bool option = false;
    bool shift = false;

    bool operator==(const Modifiers&) const = default;
};

enum class MouseButton { left, right };

/// Input as if it came from the user's own keyboard and pointer. Each operation is complete in itself: what it
/// presses it also releases.
///
/// Nothing reports success or failure, and nothing waits for other programs: input that the system refuses is
/// dropped. Keys and texts come on the server queue, the pointer on the main queue; each of the two keeps its
/// order.
class InputEvents {
public:
    virtual ~InputEvents() = default;

    virtual void pressKey(Key key, Modifiers modifiers) = 0;
    /// UTF-8, of any length.
    virtual void typeText(std::string_view text) = 0;
    virtual void pressMediaKey(MediaKey key) = 0;

    /// In points or fractions of them, x to the right and y downwards.
    virtual void movePointer(double dx, double dy) = 0;
    /// One click where the pointer is.
    virtual void click(MouseButton button) = 0;
};

} // namespace velloway
