#pragma once

#include "hosts/linux/network/PhoneSocket.h"

#include <boost/system/error_code.hpp>

#include <functional>
#include <memory>

namespace velloway {

struct HandshakeResult {
    /// None when the far end may send messages now.
    boost::system::error_code error;
    /// The far end was sent a refusal, which it should have time to read.
    bool wasRefused = false;
};

/// Reads the far end's request to become a WebSocket and answers it. `owner` keeps the socket alive until
/// `completion` has been called. Without a timeout: whoever closes the socket ends it.
void acceptHandshake(PhoneSocket& socket, std::shared_ptr<void> owner,
                     std::function<void(const HandshakeResult&)> completion);

} // namespace velloway
