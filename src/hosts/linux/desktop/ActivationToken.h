#pragma once

#include <string>

namespace velloway {

/// What a desktop hands to a program that the user has just started or called upon, so that the program may
/// bring a window forward. Both parts may be empty.
struct ActivationToken {
    std::string wayland;
    /// Names the pointer's "busy" state too, which lasts until the program answers.
    std::string x11;

    bool operator==(const ActivationToken&) const = default;
};

/// The next window that is activated uses the token; on X11 the desktop learns that the start is over. Main
/// thread.
void useActivationToken(const ActivationToken& token);

} // namespace velloway
