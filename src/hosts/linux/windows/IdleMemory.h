#pragma once

namespace velloway {

/// Gives back the memory that the process has freed, and lets go of the pages of libraries: they stay in the
/// file cache of the system as long as it has room, and come back as they are used. Takes milliseconds; to be
/// called when most of what was used last is not needed soon, as after the start. Any thread.
void giveBackIdleMemory();

} // namespace velloway
