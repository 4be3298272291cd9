#pragma once

#include "platform/Scripts.h"

namespace velloway {

/// Runs each action as a script text in this process, to its end. The first script for another application
/// makes the system ask the user, and waits for the answer.
class MacScripts final : public Scripts {
public:
    std::optional<std::string> run(const SystemScript& script) override;
};

} // namespace velloway
