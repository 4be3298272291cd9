#pragma once

#include <optional>
#include <string>

namespace velloway {

/// What the desktop itself is to do.
struct SystemScript {
    /// The volume changes by 5 of 100.
    enum class Action { volumeUp, volumeDown, openLocation, emptyTrash, lockScreen, sleep };
    Action action = Action::volumeUp;
    /// For `openLocation`: the address, as it came, which may be anything.
    std::string address;

    bool operator==(const SystemScript&) const = default;
};

/// Main thread only.
class Scripts {
public:
    virtual ~Scripts() = default;

    /// Returns the description of the error, or nothing on success. May block until the action has ended; a
    /// host that only starts it reports later failures itself.
    virtual std::optional<std::string> run(const SystemScript& script) = 0;
};

} // namespace velloway
