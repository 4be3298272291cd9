#pragma once

#include "fakes/Journal.h"
#include "platform/InputEvents.h"
#include "platform/Scripts.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velloway::test {

/// Records every event that is made and posted. `failAt` makes the n-th creation from now fail.
class FakeInputEvents : public InputEvents {
public:
    struct Posted {
        enum class Kind { keyboard, mouse, systemDefined, empty };
        Kind kind = Kind::empty;
        std::uint16_t virtualKey = 0;
        bool keyDown = false;
        std::uint64_t flags = 0;
        bool flagsWereSet = false;
        std::optional<std::u16string> text;
        MouseEventType mouseType = MouseEventType::moved;
        Point position;
        MouseButton button = MouseButton::left;
        std::uint64_t modifierFlags = 0;
        std::int16_t subtype = 0;
        std::int64_t data1 = 0;
        std::int64_t data2 = 0;
    };

    std::unique_ptr<EventSource> makeSource(EventSourceState state) override {
        sourceStates.push_back(state);
        return creationFails() ? nullptr : std::make_unique<EventSource>();
    }
    std::unique_ptr<InputEvent> makeKeyboardEvent(EventSource&, std::uint16_t virtualKey,
                                                  bool keyDown) override {
        return make({.kind = Posted::Kind::keyboard, .virtualKey = virtualKey, .keyDown = keyDown});
    }
    std::unique_ptr<InputEvent> makeEvent() override { return make({.kind = Posted::Kind::empty}); }
    std::unique_ptr<InputEvent> makeMouseEvent(MouseEventType type, Point position,
                                               MouseButton button) override {
        return make({.kind = Posted::Kind::mouse, .mouseType = type, .position = position, .button = button});
    }
    std::unique_ptr<InputEvent> makeSystemDefinedEvent(std::uint64_t modifierFlags, std::int16_t subtype,
                                                       std::int64_t data1, std::int64_t data2) override {
        return make({.kind = Posted::Kind::systemDefined,
                     .modifierFlags = modifierFlags,
                     .subtype = subtype,
                     .data1 = data1,
                     .data2 = data2});
    }
    void post(InputEvent& event) override {
        posted.push_back(static_cast<Event&>(event).value);
        if (posted.back().kind == Posted::Kind::mouse) {
            pointer = posted.back().position;
        }
    }

    /// 1 is the next creation; 0 lets all succeed.
    int failAt = 0;
    Point pointer{100, 200};
    std::vector<Posted> posted;
    std::vector<EventSourceState> sourceStates;

private:
    struct Event : InputEvent {
        Event(Posted initial, Point where) : value(std::move(initial)), pointer(where) {}
        void setFlags(std::uint64_t flags) override {
            value.flags = flags;
            value.flagsWereSet = true;
        }
        void setUnicodeString(std::u16string_view units) override { value.text = std::u16string(units); }
        Point location() const override { return pointer; }
        Posted value;
        Point pointer;
    };

    bool creationFails() { return failAt > 0 && --failAt == 0; }
    std::unique_ptr<InputEvent> make(Posted value) {
        return creationFails() ? nullptr : std::make_unique<Event>(std::move(value), pointer);
    }
};

class FakeScripts : public Scripts {
public:
    std::optional<std::string> run(const SystemScript& script) override {
        scripts.push_back(script);
        return error;
    }

    std::vector<SystemScript> scripts;
    std::optional<std::string> error;
};

} // namespace velloway::test
