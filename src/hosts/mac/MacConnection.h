#pragma once

#include "hosts/mac/MacActivity.h"
#include "hosts/mac/NativeRef.h"
#include "platform/Network.h"

namespace velloway {

/// One accepted WebSocket of the Network framework. Its queue must be a `MacDispatchQueue`.
///
/// The framework reports the end of a connection by a receive alone when the other side has closed it, or when
/// the receive fails. The connection is then cancelled from here, so that a final state follows in every case.
class MacConnection final : public NetworkConnection {
public:
    /// Adds a reference to `accepted`, which must not have been started. What `beginActivity` returns is held
    /// from the state `ready` to the end.
    MacConnection(nw_connection_t _Nonnull accepted, BeginActivity beginActivity);
    ~MacConnection() override;

    void setStateHandler(StateHandler handler) override;
    void start(DispatchQueue& queue) override;
    void cancel() override;
    Endpoint endpoint() const override;
    void receiveMessage(ReceiveCompletion completion) override;
    void send(SharedText text, std::string_view identifier, SendCompletion completion) override;
    /// The framework has one text of a series at a time; what was sent afterwards waits here.
    void send(std::shared_ptr<TextSeries> series, std::uint64_t index, std::string_view identifier,
              SendCompletion completion) override;

private:
    struct Shared;

    NetworkRef<nw_connection_t> connection_;
    /// What the framework's blocks hold in place of this object.
    std::shared_ptr<Shared> shared_;
};

} // namespace velloway
