#pragma once

#include "platform/InputEvents.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace velloway {

/// What the desktop calls each key. Command is the Super key and Option is Alt.
std::uint32_t keysymOf(Key key);
std::uint32_t keysymOf(MediaKey key);

/// The modifiers to hold and then the key itself, in the order of pressing. A key is not held around itself.
std::vector<std::uint32_t> keysymsOf(Key key, Modifiers modifiers);

/// The keysyms that type a UTF-8 text. A line break of either kind is one Return; control characters that no
/// key types are left out.
std::vector<std::uint32_t> keysymsOf(std::string_view text);

} // namespace velloway
