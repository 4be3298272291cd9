#pragma once

#include <string>

namespace velloway::phone::device {

struct DeviceOptions {
    /// Empty for the phone's own name.
    std::string name;
    /// Seconds between two looks at what is new on the phone. The battery and the call log are looked at once
    /// in six times.
    double pollInterval = 10;
    /// Seconds that a command may take.
    double commandLimit = 20;
    /// How many entries of each log are sent.
    int logLength = 500;
};

} // namespace velloway::phone::device
