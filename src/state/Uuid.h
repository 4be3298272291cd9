#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <string>

namespace velloway {

/// A random (version 4) UUID.
class Uuid {
public:
    /// Any thread.
    static Uuid random();

    /// The standard text form, in upper case.
    std::string text() const;

    auto operator<=>(const Uuid&) const = default;

private:
    std::array<std::uint8_t, 16> bytes_{};
};

} // namespace velloway
