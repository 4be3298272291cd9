#pragma once

#include "hosts/linux/windows/ViewWindows.h"

namespace velloway {

/// Windows of the Qt Quick views. The engine under them is made with the first window.
std::unique_ptr<ViewWindows> makeQuickWindows();

} // namespace velloway
