#pragma once

namespace velloway {

/// Gives back the memory that the process has freed, and lets go of the pages of libraries: they stay in the
/// file cache of the system as long as it has room, and come back one by one when they are used. Takes
/// milliseconds; to be called when nothing of that is needed soon.
void giveBackIdleMemory();

} // namespace velloway
