#pragma once

#include <string>
#include <string_view>

namespace velloway::phone {

/// One line for a received message: the action first, then every member, long texts cut.
std::string pretty(std::string_view message);

/// The message with every text longer than `limit` cut to its head, so that it can be kept. A message that is
/// no JSON comes back as it is.
std::string shortened(std::string_view message, std::size_t limit);

} // namespace velloway::phone
