#pragma once

#include "phone/Loop.h"

#include <boost/asio/io_context.hpp>

namespace velloway::phone {

struct Loop::Engine {
    boost::asio::io_context context;
};

} // namespace velloway::phone
