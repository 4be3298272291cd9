#pragma once

#include "phone/Commands.h"

#include <string_view>
#include <vector>

namespace velloway::phone {

/// Reads a script: one JSON object a line; empty lines and lines that begin with `#` are passed over. Each
/// holds one of "send" (a message), "do" (a command line) and "expect" (a pattern, with "within" seconds), and
/// may hold "at" (seconds after the first connection) or "after" (seconds after the line before).
/// Throws std::invalid_argument with the number of the line.
std::vector<Step> parseScript(std::string_view text, const World& world);

/// Whether the message is JSON and holds all that the pattern holds: members of objects by name, lists element
/// by element. The text "*" in the pattern stands for any value.
bool matches(std::string_view pattern, std::string_view message);

} // namespace velloway::phone
