#include "hosts/mac/MacInputEvents.h"

#include "hosts/mac/NativeRef.h"
#include "hosts/mac/SystemDefinedEvent.h"

#include <vector>

namespace velloway {

namespace {

class MacEventSource final : public EventSource {
public:
    explicit MacEventSource(CGEventSourceRef created)
        : source_(CoreFoundationRef<CGEventSourceRef>::adopt(created)) {}

    CGEventSourceRef native() const { return source_.get(); }

private:
    CoreFoundationRef<CGEventSourceRef> source_;
};

class MacInputEvent final : public InputEvent {
public:
    explicit MacInputEvent(CGEventRef created) : event_(CoreFoundationRef<CGEventRef>::adopt(created)) {}

    void setFlags(std::uint64_t flags) override {
        CGEventSetFlags(event_.get(), static_cast<CGEventFlags>(flags));
    }
    void setUnicodeString(std::u16string_view units) override {
        const std::vector<UniChar> copied(units.begin(), units.end());
        CGEventKeyboardSetUnicodeString(event_.get(), copied.size(), copied.data());
    }
    Point location() const override {
        const CGPoint point = CGEventGetLocation(event_.get());
        return {point.x, point.y};
    }
    CGEventRef native() const { return event_.get(); }

private:
    CoreFoundationRef<CGEventRef> event_;
};

std::unique_ptr<InputEvent> wrapped(CGEventRef created) {
    return created != nullptr ? std::make_unique<MacInputEvent>(created) : nullptr;
}

} // namespace

std::unique_ptr<EventSource> MacInputEvents::makeSource(EventSourceState state) {
    const CGEventSourceRef created = CGEventSourceCreate(static_cast<CGEventSourceStateID>(state));
    return created != nullptr ? std::make_unique<MacEventSource>(created) : nullptr;
}

std::unique_ptr<InputEvent> MacInputEvents::makeKeyboardEvent(EventSource& source, std::uint16_t virtualKey,
                                                              bool keyDown) {
    return wrapped(
        CGEventCreateKeyboardEvent(static_cast<MacEventSource&>(source).native(), virtualKey, keyDown));
}

std::unique_ptr<InputEvent> MacInputEvents::makeEvent() {
    return wrapped(CGEventCreate(nullptr));
}

std::unique_ptr<InputEvent> MacInputEvents::makeMouseEvent(MouseEventType type, Point position,
                                                           MouseButton button) {
    return wrapped(CGEventCreateMouseEvent(nullptr, static_cast<CGEventType>(type),
                                           CGPoint{position.x, position.y},
                                           static_cast<CGMouseButton>(button)));
}

std::unique_ptr<InputEvent> MacInputEvents::makeSystemDefinedEvent(std::uint64_t modifierFlags,
                                                                   std::int16_t subtype, std::int64_t data1,
                                                                   std::int64_t data2) {
    return wrapped(copySystemDefinedEvent(modifierFlags, subtype, data1, data2));
}

void MacInputEvents::post(InputEvent& event) {
    CGEventPost(kCGHIDEventTap, static_cast<MacInputEvent&>(event).native());
}

} // namespace velloway
