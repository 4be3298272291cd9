#pragma once

#include <string_view>

namespace velloway {

/// Ends the process at once, with `message` as the last line on standard error.
[[noreturn]] void fatal(std::string_view message);

} // namespace velloway
