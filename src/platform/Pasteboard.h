#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velloway {

/// The desktop's general pasteboard, plain text only. Main thread only.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;

    /// Must come before a write.
    virtual void clearContents() = 0;
    /// UTF-8. False when the desktop did not take the text.
    virtual bool setString(std::string_view text) = 0;
    /// Absent when what lies on the pasteboard has no plain-text form, or cannot be read.
    virtual std::optional<std::string> string() const = 0;
    /// False while the desktop keeps what lies on the pasteboard from this program.
    virtual bool isReadable() const { return true; }
};

} // namespace velloway
