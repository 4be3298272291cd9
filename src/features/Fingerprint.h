#pragma once

#include <cstdint>
#include <string_view>

namespace velloway {

/// Tells bytes that have changed from those that have not: equal bytes have equal fingerprints, and others
/// almost certainly do not. No protection against somebody who looks for two with the same one.
std::uint64_t fingerprint(std::string_view bytes);

} // namespace velloway
