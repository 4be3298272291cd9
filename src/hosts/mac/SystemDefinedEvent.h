#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <cstdint>

namespace velloway {

/// The postable form of an event of the kind that special keys send: system-defined, at (0, 0), with timestamp
/// 0, window number 0 and no context. The caller owns one reference; null when it can't be made.
CGEventRef _Nullable copySystemDefinedEvent(std::uint64_t modifierFlags, std::int16_t subtype,
                                            std::int64_t data1, std::int64_t data2);

} // namespace velloway
