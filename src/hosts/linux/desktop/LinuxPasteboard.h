#pragma once

#include "platform/Pasteboard.h"

#include <memory>

namespace velloway {

class DataControl;

/// The clipboard of the desktop. Main thread, while the QGuiApplication stands.
///
/// A Wayland compositor hides its clipboard from programs without the keyboard. Where it has a protocol for
/// clipboard programs, that is used, with a window in front or not; where it has none, reading and writing fail
/// while no window of the program has the keyboard.
///
/// A read asks the program that owns the clipboard. One that is stopped but not gone holds the caller for up to
/// 5 seconds per question, twice at most; then the clipboard counts as empty of text.
class LinuxPasteboard : public Pasteboard {
public:
    LinuxPasteboard();
    ~LinuxPasteboard() override;

    void clearContents() override;
    bool setString(std::string_view text) override;
    std::optional<std::string> string() const override;
    bool isReadable() const override;

private:
    DataControl* dataControl() const;

    /// Connected with the first use.
    mutable std::unique_ptr<DataControl> dataControl_;
    mutable bool isSoughtFor_ = false;
};

} // namespace velloway
