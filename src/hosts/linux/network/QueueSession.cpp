#include "hosts/linux/network/QueueSession.h"

#include "hosts/linux/network/AsioLoop.h"

namespace velloway {

QueueSession::QueueSession(AsioQueue& madeOn) : queue(madeOn) {
    queue.loop().add(*this);
}

boost::asio::io_context& QueueSession::loop() {
    return queue.loop().context();
}

void QueueSession::leaveQueue() {
    if (hasQueue) {
        queue.loop().remove(*this);
    }
}

} // namespace velloway
