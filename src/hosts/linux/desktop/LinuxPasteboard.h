#pragma once

#include "platform/Pasteboard.h"

namespace velloway {

/// The clipboard of the desktop. Main thread, while the QGuiApplication stands.
///
/// A read asks the program that owns the clipboard. One that is stopped but not gone holds the caller for up to
/// 5 seconds per question, twice at most; then the clipboard counts as empty of text.
class LinuxPasteboard : public Pasteboard {
public:
    void clearContents() override;
    void setString(std::string_view text) override;
    std::optional<std::string> string() const override;
};

} // namespace velloway
