#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace velloway {

struct Point {
    double x = 0;
    double y = 0;
    bool operator==(const Point&) const = default;
};

/// The platform's numbers.
enum class EventSourceState : int { hidSystemState = 1 };
enum class MouseEventType : int { leftDown = 1, leftUp = 2, rightDown = 3, rightUp = 4, moved = 5 };
enum class MouseButton : int { left = 0, right = 1 };

namespace eventFlags {
inline constexpr std::uint64_t shift = 0x20000;
inline constexpr std::uint64_t control = 0x40000;
inline constexpr std::uint64_t alternate = 0x80000;
inline constexpr std::uint64_t command = 0x100000;
} // namespace eventFlags

class EventSource {
public:
    virtual ~EventSource() = default;
};

/// One synthetic event, not yet posted.
class InputEvent {
public:
    virtual ~InputEvent() = default;
    virtual void setFlags(std::uint64_t flags) = 0;
    /// The whole text of a keyboard event, in UTF-16 code units.
    virtual void setUnicodeString(std::u16string_view units) = 0;
    /// Where the pointer was when the event was made.
    virtual Point location() const = 0;
};

/// Synthetic input at the level of the hardware. Called on the server queue for keys and on the main queue
/// for the pointer. Every `make` may return null.
class InputEvents {
public:
    virtual ~InputEvents() = default;

    virtual std::unique_ptr<EventSource> makeSource(EventSourceState state) = 0;
    virtual std::unique_ptr<InputEvent> makeKeyboardEvent(EventSource& source, std::uint16_t virtualKey,
                                                          bool keyDown) = 0;
    /// An empty event without a source; only its location is of use.
    virtual std::unique_ptr<InputEvent> makeEvent() = 0;
    virtual std::unique_ptr<InputEvent> makeMouseEvent(MouseEventType type, Point position,
                                                       MouseButton button) = 0;
    /// An event of type system-defined at (0, 0), with timestamp 0, window number 0 and no context. Null also
    /// when it has no postable form.
    virtual std::unique_ptr<InputEvent> makeSystemDefinedEvent(std::uint64_t modifierFlags,
                                                               std::int16_t subtype, std::int64_t data1,
                                                               std::int64_t data2) = 0;
    virtual void post(InputEvent& event) = 0;
};

} // namespace velloway
