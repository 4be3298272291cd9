#pragma once

#include "phone/Commands.h"
#include "phone/device/DeviceOptions.h"

#include <cstdint>
#include <string>
#include <vector>

namespace velloway::phone {

struct Options {
    std::string host = "127.0.0.1";
    std::uint16_t port = 8765;
    std::string script;
    std::string commands;
    /// Where received files go; empty keeps none.
    std::string saveTo;
    bool stay = false;
    bool rawOutput = false;
    bool answers = true;
    bool reconnects = true;
    bool wantsHelp = false;
    /// How long a script or `--exec` waits for the first connection.
    double connectTimeout = 10;
    World world;
    /// A real phone: its commands take the place of what is generated.
    bool isDevice = false;
    device::DeviceOptions device;

    /// Whether the phone works through a script or commands of its own and then leaves.
    bool isScripted() const { return !script.empty() || !commands.empty(); }
};

/// Throws std::invalid_argument with a text for the user.
Options parseOptions(const std::vector<std::string>& words);

std::string optionHelp();

} // namespace velloway::phone
