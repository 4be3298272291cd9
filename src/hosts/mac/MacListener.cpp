#include "hosts/mac/MacListener.h"

#include "hosts/mac/MacConnection.h"
#include "hosts/mac/MacDispatchQueue.h"
#include "hosts/mac/MacNetworkError.h"

namespace velloway {

namespace {

/// `setup` is never reported by the framework.
ListenerState stateFrom(nw_listener_state_t state) {
    switch (state) {
    case nw_listener_state_waiting:
        return ListenerState::waiting;
    case nw_listener_state_ready:
        return ListenerState::ready;
    case nw_listener_state_failed:
        return ListenerState::failed;
    case nw_listener_state_cancelled:
        return ListenerState::cancelled;
    case nw_listener_state_invalid:
    default:
        break;
    }
    return ListenerState::setup;
}

} // namespace

/// Set before the start, then for the queue only.
struct MacListener::Shared {
    StateHandler stateHandler;
    NewConnectionHandler newConnectionHandler;
    std::atomic<bool> isDropped = false;

    void report(ListenerState state, const std::optional<NetworkError>& error) {
        if (isDropped) {
            return;
        }
        const bool isFinal = state == ListenerState::cancelled;
        const StateHandler called = isFinal ? std::exchange(stateHandler, nullptr) : stateHandler;
        if (called) {
            called(state, error);
        }
    }
};

MacListener::MacListener(NetworkRef<nw_listener_t> listener, BeginActivity beginActivity)
    : listener_(std::move(listener)),
      beginActivity_(std::move(beginActivity)),
      shared_(std::make_shared<Shared>()) {}

MacListener::~MacListener() {
    if (!isCancelled_) {
        shared_->isDropped = true;
        nw_listener_cancel(listener_.get());
    }
}

void MacListener::setStateHandler(StateHandler handler) {
    shared_->stateHandler = std::move(handler);
}

void MacListener::setNewConnectionHandler(NewConnectionHandler handler) {
    shared_->newConnectionHandler = std::move(handler);
}

void MacListener::start(DispatchQueue& queue) {
    const auto native = static_cast<dispatch_queue_t>(static_cast<MacDispatchQueue&>(queue).native());
    const std::shared_ptr<Shared> shared = shared_;
    const BeginActivity beginActivity = beginActivity_;
    nw_listener_set_queue(listener_.get(), native);
    nw_listener_set_state_changed_handler(listener_.get(), ^(nw_listener_state_t state, nw_error_t error) {
      shared->report(stateFrom(state), networkErrorFrom(error));
    });
    nw_listener_set_new_connection_handler(listener_.get(), ^(nw_connection_t connection) {
      if (shared->isDropped || !shared->newConnectionHandler) {
          return;
      }
      // A connection without a queue would not report a cancel that comes before its start.
      nw_connection_set_queue(connection, native);
      shared->newConnectionHandler(std::make_shared<MacConnection>(connection, beginActivity));
    });
    nw_listener_start(listener_.get());
}

void MacListener::cancel() {
    isCancelled_ = true;
    nw_listener_cancel(listener_.get());
}

} // namespace velloway
