#pragma once

#include <string_view>

namespace velloway {

/// Ends the process at once, with `message` as the last line on standard error.
[[noreturn]] void fatal(std::string_view message);

/// `action` runs first at such an end, on the thread that ends the process; null for none. Main thread, while
/// no other thread runs.
void setBeforeFatal(void (*action)());

} // namespace velloway
