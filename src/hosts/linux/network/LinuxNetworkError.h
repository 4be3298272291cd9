#pragma once

#include "platform/Network.h"

#include <boost/beast/websocket/error.hpp>
#include <boost/system/error_code.hpp>

namespace velloway {

inline NetworkError networkError(const boost::system::error_code& code) {
    return {.localizedDescription = code.message(),
            .description = code.to_string() + " " + code.message(),
            .isGoodbye = code == boost::beast::websocket::error::closed};
}

} // namespace velloway
