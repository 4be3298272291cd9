#pragma once

#include "platform/InputEvents.h"

namespace velloway {

/// Synthetic input at the tap where hardware events enter. The system drops it silently while this process is
/// not trusted.
class MacInputEvents final : public InputEvents {
public:
    std::unique_ptr<EventSource> makeSource(EventSourceState state) override;
    std::unique_ptr<InputEvent> makeKeyboardEvent(EventSource& source, std::uint16_t virtualKey,
                                                  bool keyDown) override;
    std::unique_ptr<InputEvent> makeEvent() override;
    std::unique_ptr<InputEvent> makeMouseEvent(MouseEventType type, Point position,
                                               MouseButton button) override;
    std::unique_ptr<InputEvent> makeSystemDefinedEvent(std::uint64_t modifierFlags, std::int16_t subtype,
                                                       std::int64_t data1, std::int64_t data2) override;
    void post(InputEvent& event) override;
};

} // namespace velloway
