#pragma once

namespace velloway {

/// The memory of this process.
class Memory {
public:
    virtual ~Memory() = default;

    /// Gives back to the system what the program has freed. May take milliseconds, for which other threads that
    /// need memory wait: to be called while the program rests. Any thread.
    virtual void giveBack() = 0;
};

} // namespace velloway
