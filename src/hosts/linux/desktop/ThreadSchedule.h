#pragma once

namespace velloway {

// How the system shares its processors between our threads and all others. Both concern the calling thread,
// need no rights and change nothing where the system refuses.

/// For a thread that works for a moment at a time: it gets a processor soon after it has been woken, even from
/// a thread that has not used up its turn. Its share does not grow, and neither threads nor programs that it
/// starts inherit this. Does nothing on Linux before 6.12.
void takeShortTurns();

/// For work that nobody waits for: others that are busy get most of a processor that both want.
void letOthersGoFirst();

} // namespace velloway
