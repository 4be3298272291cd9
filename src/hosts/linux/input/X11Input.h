#pragma once

#include "hosts/linux/input/LinuxInput.h"
#include "hosts/linux/input/X11Keyboard.h"
#include "hosts/linux/input/X11Pointer.h"

#include <memory>
#include <string_view>
#include <utility>

namespace velloway {

/// Input by the X server's test extension. Keyboard and pointer have a connection each, as they are used on
/// different threads.
class X11Input : public LinuxInput {
public:
    explicit X11Input(InputNeeds needs = {})
        : needs_(std::move(needs)), isReady_(keyboard_->isUsable() && pointer_.isUsable()) {}

    bool isTrusted() override { return isReady_; }
    /// An X server never asks.
    bool isTrustedWithPrompt() override { return isReady_; }

    void pressKey(Key key, Modifiers modifiers) override;
    void typeText(std::string_view text) override;
    void pressMediaKey(MediaKey key) override;
    void movePointer(double dx, double dy) override;
    void click(MouseButton button) override;

private:
    const InputNeeds needs_;
    const std::shared_ptr<X11Keyboard> keyboard_ = std::make_shared<X11Keyboard>();
    X11Pointer pointer_;
    const bool isReady_;
};

} // namespace velloway
