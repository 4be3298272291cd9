#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace velloway {

/// Those characters among the keysyms, in UTF-8, that no key of the X server's keyboard yields. Empty when no X
/// server answers. A Wayland compositor gives its X server the layout that it uses itself. Waits for the X
/// server unless all keysyms are ASCII, which is taken for granted.
std::string charactersWithoutKey(std::span<const std::uint32_t> keysyms);

} // namespace velloway
