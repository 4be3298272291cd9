#pragma once

#include <string>

namespace velloway::phone::device {

/// A recording (WAV) of a tone that is easy to find: five seconds of two notes in turn.
std::string findTone();

} // namespace velloway::phone::device
