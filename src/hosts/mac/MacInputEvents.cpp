#include "hosts/mac/MacInputEvents.h"

#include "hosts/mac/NativeRef.h"
#include "hosts/mac/SystemDefinedEvent.h"
#include "text/CodePoints.h"

#include <optional>
#include <vector>

namespace velloway {

namespace {

using Source = CoreFoundationRef<CGEventSourceRef>;
using Event = CoreFoundationRef<CGEventRef>;

CGKeyCode keyCodeOf(Key key) {
    switch (key) {
    case Key::returnKey:
        return 36;
    case Key::deleteBackward:
        return 51;
    case Key::escape:
        return 53;
    case Key::command:
        return 55;
    case Key::option:
        return 58;
    case Key::control:
        return 59;
    case Key::left:
        return 123;
    case Key::right:
        return 124;
    case Key::down:
        return 125;
    case Key::up:
        return 126;
    }
    return 0;
}

std::int32_t systemKeyOf(MediaKey key) {
    switch (key) {
    case MediaKey::soundUp:
        return 0;
    case MediaKey::soundDown:
        return 1;
    case MediaKey::screenBrightnessUp:
        return 2;
    case MediaKey::screenBrightnessDown:
        return 3;
    case MediaKey::mute:
        return 7;
    case MediaKey::playPause:
        return 16;
    case MediaKey::nextTrack:
        return 17;
    case MediaKey::previousTrack:
        return 18;
    case MediaKey::keyboardLightUp:
        return 21;
    case MediaKey::keyboardLightDown:
        return 22;
    }
    return -1;
}

CGEventFlags flagsOf(Modifiers modifiers) {
    std::uint64_t flags = 0;
    flags |= modifiers.command ? std::uint64_t{kCGEventFlagMaskCommand} : 0;
    flags |= modifiers.control ? std::uint64_t{kCGEventFlagMaskControl} : 0;
    flags |= modifiers.option ? std::uint64_t{kCGEventFlagMaskAlternate} : 0;
    flags |= modifiers.shift ? std::uint64_t{kCGEventFlagMaskShift} : 0;
    return static_cast<CGEventFlags>(flags);
}

Source makeSource() {
    return Source::adopt(CGEventSourceCreate(kCGEventSourceStateHIDSystemState));
}

Event makeKeyEvent(const Source& source, CGKeyCode keyCode, bool isDown) {
    return Event::adopt(CGEventCreateKeyboardEvent(source.get(), keyCode, isDown));
}

Event makeMouseEvent(CGEventType type, CGPoint position, CGMouseButton button) {
    return Event::adopt(CGEventCreateMouseEvent(nullptr, type, position, button));
}

void post(const Event& event) {
    CGEventPost(kCGHIDEventTap, event.get());
}

/// An event without a source is made where the pointer is.
std::optional<CGPoint> pointerPosition() {
    const Event here = Event::adopt(CGEventCreate(nullptr));
    return here ? std::optional(CGEventGetLocation(here.get())) : std::nullopt;
}

void postSystemKey(std::int32_t key, bool isDown) {
    constexpr std::int16_t auxiliaryControlButtons = 8;
    const std::uint32_t flags = isDown ? 0xA00 : 0xB00;
    const Event event =
        Event::adopt(copySystemDefinedEvent(flags, auxiliaryControlButtons, systemKeyData(key, flags), -1));
    if (event) {
        post(event);
    }
}

} // namespace

void MacInputEvents::pressKey(Key key, Modifiers modifiers) {
    const Source source = makeSource();
    if (!source) {
        return;
    }
    const Event down = makeKeyEvent(source, keyCodeOf(key), true);
    if (!down) {
        return;
    }
    const Event up = makeKeyEvent(source, keyCodeOf(key), false);
    if (!up) {
        return;
    }
    CGEventSetFlags(down.get(), flagsOf(modifiers));
    CGEventSetFlags(up.get(), flagsOf(modifiers));
    post(down);
    post(up);
}

void MacInputEvents::typeText(std::string_view text) {
    const std::u16string units = utf16From(text);
    const Source source = makeSource();
    if (!source) {
        return;
    }
    const Event down = makeKeyEvent(source, 0, true);
    if (!down) {
        return;
    }
    const std::vector<UniChar> copied(units.begin(), units.end());
    CGEventKeyboardSetUnicodeString(down.get(), copied.size(), copied.data());
    post(down);
    const Event up = makeKeyEvent(source, 0, false);
    if (up) {
        post(up);
    }
}

void MacInputEvents::pressMediaKey(MediaKey key) {
    postSystemKey(systemKeyOf(key), true);
    postSystemKey(systemKeyOf(key), false);
}

void MacInputEvents::movePointer(double dx, double dy) {
    const auto from = pointerPosition();
    if (!from) {
        return;
    }
    const Event move =
        makeMouseEvent(kCGEventMouseMoved, CGPoint{from->x + dx, from->y + dy}, kCGMouseButtonLeft);
    if (move) {
        post(move);
    }
}

void MacInputEvents::click(MouseButton button) {
    const auto position = pointerPosition();
    if (!position) {
        return;
    }
    const bool isRight = button == MouseButton::right;
    const CGMouseButton native = isRight ? kCGMouseButtonRight : kCGMouseButtonLeft;
    const Event down =
        makeMouseEvent(isRight ? kCGEventRightMouseDown : kCGEventLeftMouseDown, *position, native);
    if (!down) {
        return;
    }
    const Event up = makeMouseEvent(isRight ? kCGEventRightMouseUp : kCGEventLeftMouseUp, *position, native);
    if (!up) {
        return;
    }
    post(down);
    post(up);
}

} // namespace velloway
