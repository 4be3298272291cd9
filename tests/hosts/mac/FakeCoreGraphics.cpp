#include "hosts/mac/FakeCoreGraphics.h"

#include "hosts/mac/FakeObject.h"

#include <CoreGraphics/CoreGraphics.h>

namespace velloway::test {

FakeCoreGraphics fakeCoreGraphics;

namespace {

class Source : public FakeObject {
public:
    int state = 0;
};

class Event : public FakeObject {
public:
    PostedEvent facts;
};

bool failsNow() {
    return fakeCoreGraphics.creations++ == fakeCoreGraphics.failsAt;
}

template <class Object, class Native> Object& real(Native native) {
    return *static_cast<Object*>(reinterpret_cast<FakeObject*>(native));
}

CGEventRef made(PostedEvent facts, CGEventSourceRef source) {
    if (failsNow()) {
        return nullptr;
    }
    auto* const event = new Event;
    facts.sourceState = source != nullptr ? real<Source>(source).state : -1;
    event->facts = std::move(facts);
    return reinterpret_cast<CGEventRef>(static_cast<FakeObject*>(event));
}

} // namespace

extern "C" {

CGEventSourceRef CGEventSourceCreate(CGEventSourceStateID state) {
    if (failsNow()) {
        return nullptr;
    }
    auto* const source = new Source;
    source->state = state;
    return reinterpret_cast<CGEventSourceRef>(static_cast<FakeObject*>(source));
}
CGEventRef CGEventCreate(CGEventSourceRef source) {
    return made({.kind = "empty", .x = fakeCoreGraphics.pointerX, .y = fakeCoreGraphics.pointerY}, source);
}
CGEventRef CGEventCreateKeyboardEvent(CGEventSourceRef source, CGKeyCode virtualKey, bool keyDown) {
    return made({.kind = keyDown ? "key down" : "key up", .key = virtualKey}, source);
}
CGEventRef CGEventCreateMouseEvent(CGEventSourceRef source, CGEventType type, CGPoint position,
                                   CGMouseButton button) {
    return made({.kind = "mouse",
                 .mouseType = static_cast<int>(type),
                 .button = static_cast<int>(button),
                 .x = position.x,
                 .y = position.y},
                source);
}
CGPoint CGEventGetLocation(CGEventRef event) {
    return {real<Event>(event).facts.x, real<Event>(event).facts.y};
}
void CGEventSetFlags(CGEventRef event, CGEventFlags flags) {
    ++real<Event>(event).facts.timesFlagsWereSet;
    real<Event>(event).facts.flags = static_cast<std::uint64_t>(flags);
}
void CGEventKeyboardSetUnicodeString(CGEventRef event, UniCharCount count, const UniChar* units) {
    ++real<Event>(event).facts.timesTextWasSet;
    real<Event>(event).facts.text.assign(units, units + count);
}
void CGEventPost(CGEventTapLocation tap, CGEventRef event) {
    fakeCoreGraphics.posted.push_back(real<Event>(event).facts);
    fakeCoreGraphics.posted.back().tap = static_cast<int>(tap);
}

} // extern "C"

} // namespace velloway::test
