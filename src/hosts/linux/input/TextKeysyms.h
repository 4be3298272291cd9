#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace velloway {

/// The keysyms that type a text given in UTF-16. A line break of either kind is one Return; control characters
/// that no key types are left out.
std::vector<std::uint32_t> keysymsOf(std::u16string_view text);

} // namespace velloway
