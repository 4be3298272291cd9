#pragma once

#include "hosts/linux/input/LinuxInput.h"

#include <memory>

namespace velloway {

enum class InputSession { x11, wayland, none };

/// The kind of the session that this process runs in. A Wayland session offers an X server too, through which
/// input would reach only some windows; it counts as Wayland all the same.
InputSession currentInputSession();

/// The input of this session. Main thread, after the QCoreApplication.
std::unique_ptr<LinuxInput> makeLinuxInput(const InputNeeds& needs = {});

} // namespace velloway
