#pragma once

#include "platform/Memory.h"

namespace velloway {

/// The memory as the C library manages it.
class LinuxMemory final : public Memory {
public:
    void giveBack() override;
};

} // namespace velloway
