#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <cstdint>

namespace velloway {

/// What an event says of a key of the computer itself: the key in the upper half, its state in the lower one.
/// In 32 bits, and widened with its sign.
constexpr std::int64_t systemKeyData(std::int32_t key, std::uint32_t state) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(key) << 16U | state);
}

/// The postable form of an event of the kind that special keys send: system-defined, at (0, 0), with timestamp
/// 0, window number 0 and no context. The caller owns one reference; null when it can't be made.
CGEventRef _Nullable copySystemDefinedEvent(std::uint64_t modifierFlags, std::int16_t subtype,
                                            std::int64_t data1, std::int64_t data2);

} // namespace velloway
