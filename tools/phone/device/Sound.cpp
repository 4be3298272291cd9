#include "phone/Members.h"
#include "phone/device/Adapters.h"

#include <boost/json/array.hpp>

namespace velloway::phone::device {

std::optional<Volume::Level> Volume::read(const boost::json::value& answer) {
    for (const auto& value : answer.is_array() ? answer.get_array() : boost::json::array()) {
        if (value.is_object() && textUnder(value.get_object(), "stream") == "music") {
            return Level{integerUnder(value.get_object(), "volume").value_or(0),
                         integerUnder(value.get_object(), "max_volume").value_or(0)};
        }
    }
    return std::nullopt;
}

void Volume::ask(Caller& caller, std::function<void(Level)> done) {
    caller.ask({"termux-volume"}, [done = std::move(done)](const boost::json::value& answer) {
        if (const auto level = read(answer)) {
            done(*level);
        }
    });
}

void Volume::set(Caller& caller, std::int64_t level) {
    caller.call({"termux-volume", "music", std::to_string(level)}, [](const std::string&) {});
}

void MediaPlayer::playOrPause(Caller& caller) {
    caller.call({"termux-media-player", "info"}, [&caller](const std::string& info) {
        const bool isPlaying = info.find("Status: Playing") != std::string::npos;
        caller.call({"termux-media-player", isPlaying ? "pause" : "play"}, [](const std::string&) {});
    });
}

void MediaPlayer::play(Caller& caller, const std::string& path) {
    caller.call({"termux-media-player", "play", path}, [](const std::string&) {});
}

void MediaPlayer::stop(Caller& caller) {
    caller.call({"termux-media-player", "stop"}, [](const std::string&) {});
}

void Signals::torch(Caller& caller, bool isOn) {
    caller.call({"termux-torch", isOn ? "on" : "off"}, [](const std::string&) {});
}

void Signals::vibrate(Caller& caller, int milliseconds) {
    caller.call({"termux-vibrate", "-f", "-d", std::to_string(milliseconds)}, [](const std::string&) {});
}

} // namespace velloway::phone::device
