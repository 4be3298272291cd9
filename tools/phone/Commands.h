#pragma once

#include "phone/Actions.h"

#include <string>
#include <string_view>
#include <vector>

namespace velloway::phone {

/// What generated messages are made from.
struct World {
    /// Milliseconds since 1970.
    double now = 0;
    std::size_t smsThreads = 8;
    std::size_t smsMessages = 60;
    std::size_t calls = 20;
    /// A real phone stands behind: commands that leave their words out ask it, and generate nothing.
    bool isDevice = false;
};

/// Reads one command, for example `battery 20 charging`. An empty line gives nothing. Throws
/// std::invalid_argument, with a text for the user, when there is no such command or its words do not fit.
std::vector<Action> parseCommand(std::string_view line, const World& world);

/// One line per command.
std::string commandHelp();

} // namespace velloway::phone
