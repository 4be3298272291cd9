#include "phone/Members.h"

namespace velloway::phone {

std::string textUnder(const boost::json::object& object, std::string_view key) {
    const auto* value = object.if_contains(key);
    return value != nullptr && value->is_string()
               ? std::string(value->get_string().c_str(), value->get_string().size())
               : std::string();
}

std::optional<std::int64_t> integerUnder(const boost::json::object& object, std::string_view key) {
    const auto* value = object.if_contains(key);
    return value != nullptr && value->is_int64() ? std::optional(value->get_int64()) : std::nullopt;
}

bool isTrueUnder(const boost::json::object& object, std::string_view key) {
    const auto* value = object.if_contains(key);
    return value != nullptr && value->is_bool() && value->get_bool();
}

} // namespace velloway::phone
