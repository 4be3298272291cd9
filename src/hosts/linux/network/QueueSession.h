#pragma once

#include "hosts/linux/network/AsioQueue.h"
#include "hosts/linux/network/AsioResident.h"
#include "platform/Fatal.h"

#include <atomic>
#include <memory>
#include <utility>

namespace boost::asio {
class io_context;
}

namespace velloway {

/// What lives on the queue behind a listener or a connection. It outlives the object that the core holds, as
/// long as it has something to finish, but never the queue.
class QueueSession : public AsioResident {
public:
    // On the queue.
    virtual void start() = 0;
    virtual void cancel() = 0;
    /// The core has destroyed its object: ends without a callback, unless a cancel is being carried out.
    virtual void abandon() = 0;

    AsioQueue& queue;
    /// The core has destroyed its object without a cancel: no callback is called any more.
    std::atomic<bool> isAbandoned = false;
    std::atomic<bool> isCancelRequested = false;
    /// Whether the queue has not ended.
    std::atomic<bool> hasQueue = true;

protected:
    explicit QueueSession(AsioQueue& madeOn);
    ~QueueSession() = default;

    boost::asio::io_context& loop();

    /// For the destructor of each session.
    void leaveQueue();
};

/// The object of the core holds its session by this; every operation may be called from any thread.
template <class Session> class SessionHandle {
public:
    explicit SessionHandle(std::shared_ptr<Session> session) : session_(std::move(session)) {}
    SessionHandle(const SessionHandle&) = delete;
    SessionHandle& operator=(const SessionHandle&) = delete;

    ~SessionHandle() {
        session_->isAbandoned = !session_->isCancelRequested;
        if (session_->hasQueue) {
            AsioQueue& queue = session_->queue;
            queue.async([session = std::move(session_)] { session->abandon(); });
        }
    }

    void start(DispatchQueue& asked) {
        if (&asked != &session_->queue) {
            fatal("a socket was started on a queue that it was not made with");
        }
        session_->queue.async([session = session_] { session->start(); });
    }

    void cancel() {
        session_->isCancelRequested = true;
        if (session_->hasQueue) {
            session_->queue.async([session = session_] { session->cancel(); });
        }
    }

    Session* operator->() const { return session_.get(); }

private:
    std::shared_ptr<Session> session_;
};

} // namespace velloway
