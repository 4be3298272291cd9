#pragma once

namespace velloway {

/// The colours that the rules of the tabs and panels speak of; a theme gives each its value.
enum class ColorRole { primary, secondary, tint, white, red, green, blue, orange };

} // namespace velloway
