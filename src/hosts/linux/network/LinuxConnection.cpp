#include "hosts/linux/network/LinuxConnection.h"

#include "hosts/linux/network/ConnectionSession.h"

#include <utility>

namespace velloway {

LinuxConnection::LinuxConnection(AsioQueue& queue, const LinuxNetworkLimits& limits, int descriptor,
                                 bool isIPv6, Endpoint endpoint)
    : session_(std::make_shared<ConnectionSession>(queue, limits, descriptor, isIPv6, std::move(endpoint))) {}

LinuxConnection::~LinuxConnection() = default;

void LinuxConnection::setStateHandler(StateHandler handler) {
    session_->stateHandler = std::move(handler);
}

void LinuxConnection::start(DispatchQueue& queue) {
    session_.start(queue);
}

void LinuxConnection::cancel() {
    session_.cancel();
}

Endpoint LinuxConnection::endpoint() const {
    return session_->endpoint;
}

void LinuxConnection::receiveMessage(ReceiveCompletion completion) {
    session_->receive(std::move(completion));
}

void LinuxConnection::send(SharedText text, std::string_view, SendCompletion completion) {
    session_->send(std::move(text), std::move(completion));
}

void LinuxConnection::send(std::shared_ptr<TextSeries> series, std::uint64_t index, std::string_view,
                           SendCompletion completion) {
    session_->send(std::move(series), index, std::move(completion));
}

} // namespace velloway
