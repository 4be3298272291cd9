#pragma once

#include "hosts/linux/input/InputBackend.h"
#include "platform/InputEvents.h"

namespace velloway {

/// Translates the platform's numbers, which the core speaks, into keysyms, text, moves and buttons.
class LinuxInputEvents : public InputEvents {
public:
    /// The backend must outlive this object and its events.
    explicit LinuxInputEvents(InputBackend& backend) : backend_(backend) {}

    std::unique_ptr<EventSource> makeSource(EventSourceState state) override;
    std::unique_ptr<InputEvent> makeKeyboardEvent(EventSource& source, std::uint16_t virtualKey,
                                                  bool keyDown) override;
    std::unique_ptr<InputEvent> makeEvent() override;
    std::unique_ptr<InputEvent> makeMouseEvent(MouseEventType type, Point position,
                                               MouseButton button) override;
    std::unique_ptr<InputEvent> makeSystemDefinedEvent(std::uint64_t modifierFlags, std::int16_t subtype,
                                                       std::int64_t data1, std::int64_t data2) override;
    void post(InputEvent& event) override;

private:
    InputBackend& backend_;
};

} // namespace velloway
