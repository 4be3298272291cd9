#pragma once

#include "hosts/linux/windows/ViewWindows.h"
#include "platform/Log.h"

namespace velloway {

/// The views, from the library beside the program or in the folder that installing puts it into. Once loaded it
/// stays. Null, with a line in the log, when it can't be used.
std::unique_ptr<ViewWindows> loadViewsLibrary(Log& log);

} // namespace velloway
