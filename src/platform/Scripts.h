#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velloway {

/// What a script asks of the desktop; `sourceText` says the same in the platform's scripting language.
struct SystemScript {
    enum class Action { volumeUp, volumeDown, openLocation, emptyTrash, lockScreen, sleep };
    Action action = Action::volumeUp;
    std::string sourceText;
    /// For `openLocation`: the address, as it came.
    std::string address;
};

/// Main thread only.
class Scripts {
public:
    virtual ~Scripts() = default;

    /// Runs to the end and returns the description of the error, or nothing on success.
    virtual std::optional<std::string> run(const SystemScript& script) = 0;
};

} // namespace velloway
