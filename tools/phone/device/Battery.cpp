#include "phone/Members.h"
#include "phone/Messages.h"
#include "phone/device/Adapters.h"

#include <cmath>

namespace velloway::phone::device {

std::optional<std::string> Battery::messageIfChanged(const boost::json::value& answer) {
    if (!answer.is_object()) {
        return std::nullopt;
    }
    const auto& object = answer.get_object();
    const auto* percentage = object.if_contains("percentage");
    if (percentage == nullptr || !percentage->is_number()) {
        return std::nullopt;
    }
    const std::string status = textUnder(object, "status");
    const bool isCharging = status == "CHARGING" || status == "FULL";
    std::string message = messages::batteryStatus(std::lround(percentage->to_number<double>()), isCharging);
    if (message == last_) {
        return std::nullopt;
    }
    last_ = message;
    return message;
}

} // namespace velloway::phone::device
