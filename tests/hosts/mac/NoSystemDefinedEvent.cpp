#include "hosts/mac/SystemDefinedEvent.h"

namespace velloway {

/// Stands in where no Objective-C code is linked.
CGEventRef copySystemDefinedEvent(std::uint64_t, std::int16_t, std::int64_t, std::int64_t) {
    return nullptr;
}

} // namespace velloway
