#pragma once

#include <boost/json/object.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Reading single members of a JSON object. A member of another type counts as missing.
namespace velloway::phone {

/// Empty when missing.
std::string textUnder(const boost::json::object& object, std::string_view key);
std::optional<std::int64_t> integerUnder(const boost::json::object& object, std::string_view key);
/// False when missing.
bool isTrueUnder(const boost::json::object& object, std::string_view key);

} // namespace velloway::phone
