#include "phone/Members.h"
#include "phone/device/Adapters.h"

namespace velloway::phone::device {

std::string DeviceInfo::carrier(const boost::json::value& answer) {
    if (!answer.is_object()) {
        return {};
    }
    const std::string name = textUnder(answer.get_object(), "sim_operator_name");
    return name.empty() ? textUnder(answer.get_object(), "network_operator_name") : name;
}

std::string WifiInfo::name(const boost::json::value& answer) {
    const std::string name = answer.is_object() ? textUnder(answer.get_object(), "ssid") : std::string();
    return name == "<unknown ssid>" ? std::string() : name;
}

} // namespace velloway::phone::device
