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
    /// UTF-8.
    virtual void setString(std::string_view text) = 0;
    /// Absent when what lies on the pasteboard has no plain-text form.
    virtual std::optional<std::string> string() const = 0;
};

} // namespace velloway
