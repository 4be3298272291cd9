#pragma once

#include "platform/Memory.h"

namespace velloway {

/// There is nothing to do: the system takes back what an application has freed when it needs it.
class MacMemory final : public Memory {
public:
    void giveBack() override {}
};

} // namespace velloway
