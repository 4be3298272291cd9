#pragma once

#include "platform/InputEvents.h"

namespace velloway {

/// Synthetic input at the tap where hardware events enter. The system drops it silently while this process is
/// not trusted. An event that can't be made ends the operation without a word.
class MacInputEvents final : public InputEvents {
public:
    /// Modifiers exist only as flags on the press and the release of the key.
    void pressKey(Key key, Modifiers modifiers) override;
    /// The whole text is on one press, which stays posted when its release can't be made.
    void typeText(std::string_view text) override;
    void pressMediaKey(MediaKey key) override;
    void movePointer(double dx, double dy) override;
    void click(MouseButton button) override;
};

} // namespace velloway
