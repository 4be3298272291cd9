#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velloway {

/// What the program prints, and then ends, when its command line asks about the program itself; absent when the
/// program is to start. Needs no desktop.
std::optional<std::string> answerTo(const std::vector<std::string_view>& arguments);

} // namespace velloway
