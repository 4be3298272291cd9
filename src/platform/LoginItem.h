#pragma once

#include <optional>
#include <string>

namespace velloway {

/// The numbers are the platform's.
enum class LoginItemStatus : int { notRegistered = 0, enabled = 1, requiresApproval = 2, notFound = 3 };

/// Starting at login. Main thread only.
class LoginItem {
public:
    virtual ~LoginItem() = default;

    virtual LoginItemStatus status() const = 0;
    /// Both return the error's localised description, or nothing on success.
    virtual std::optional<std::string> registerItem() = 0;
    virtual std::optional<std::string> unregisterItem() = 0;
};

} // namespace velloway
