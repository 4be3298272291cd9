#pragma once

#include "platform/Host.h"

#include <string>

namespace velloway {

/// The address that the user types into the phone.
struct LocalIPAddress {
    /// The IPv4 address of the last wired or wireless interface that is up, in the system's order, or
    /// "Not found". Searches anew at each call; any thread. An interface without an address is fatal.
    static std::string current(const Host& host);
};

} // namespace velloway
