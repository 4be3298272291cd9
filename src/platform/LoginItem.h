#pragma once

#include <optional>
#include <string>

namespace velloway {

/// `requiresApproval` waits for the user; `notFound` would start a program that is not there.
enum class LoginItemStatus { notRegistered, enabled, requiresApproval, notFound };

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
