#pragma once

#include <string_view>

namespace velloway {

/// Whether `bytes` are UTF-8 throughout.
bool isUtf8(std::string_view bytes);

} // namespace velloway
