#pragma once

#include "hosts/linux/network/AsioQueue.h"

#include <boost/asio/io_context.hpp>

namespace velloway {

/// An object that owns sockets or timers of a queue.
class AsioResident {
public:
    /// The queue ends: lets go of every socket, timer and callback, without calling any. The queue must not be
    /// used again.
    virtual void queueEnds() = 0;

protected:
    ~AsioResident() = default;
};

/// What the sockets of this host may see of the queue. Private to this folder, since it brings Asio with it.
class AsioQueueAccess {
public:
    static boost::asio::io_context& context(AsioQueue& queue);

    // Any thread. A resident stays valid until it is removed or has been told that the queue ends.
    static void add(AsioQueue& queue, AsioResident& resident);
    static void remove(AsioQueue& queue, AsioResident& resident);
};

} // namespace velloway
