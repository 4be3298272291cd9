#pragma once

namespace velloway {

/// An object that owns sockets or timers of a loop.
class AsioResident {
public:
    /// The loop ends: releases every socket, timer and callback, without calling any. The loop must not be used
    /// again.
    virtual void queueEnds() = 0;

protected:
    ~AsioResident() = default;
};

} // namespace velloway
