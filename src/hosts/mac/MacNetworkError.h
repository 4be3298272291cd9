#pragma once

#include "platform/Network.h"

#include <Network/Network.h>

#include <optional>

namespace velloway {

/// Absent for no error.
std::optional<NetworkError> networkErrorFrom(nw_error_t _Nullable error);

} // namespace velloway
