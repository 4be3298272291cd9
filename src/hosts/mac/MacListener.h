#pragma once

#include "hosts/mac/MacActivity.h"
#include "hosts/mac/NativeRef.h"
#include "platform/Network.h"

#include <atomic>

namespace velloway {

class MacListener final : public NetworkListener {
public:
    MacListener(NetworkRef<nw_listener_t> listener, BeginActivity beginActivity);
    ~MacListener() override;

    void setStateHandler(StateHandler handler) override;
    void setNewConnectionHandler(NewConnectionHandler handler) override;
    void start(DispatchQueue& queue) override;
    void cancel() override;

private:
    struct Shared;

    NetworkRef<nw_listener_t> listener_;
    BeginActivity beginActivity_;
    /// What the framework's blocks hold in place of this object.
    std::shared_ptr<Shared> shared_;
    std::atomic<bool> isCancelled_ = false;
};

} // namespace velloway
