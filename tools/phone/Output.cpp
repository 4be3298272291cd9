#include "phone/Output.h"

#include <chrono>
#include <cstdio>
#include <ctime>

namespace velloway::phone {

namespace {

std::string timeOfDay() {
    const auto now = std::chrono::system_clock::now();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(now);
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
    std::tm parts{};
    localtime_r(&seconds, &parts);
    char text[32];
    std::snprintf(text, sizeof text, "%02d:%02d:%02d.%03d", parts.tm_hour, parts.tm_min, parts.tm_sec,
                  static_cast<int>(milliseconds));
    return text;
}

} // namespace

void Output::write(const std::string& message) const {
    std::printf("%s\n", message.c_str());
    std::fflush(stdout);
}

void Output::show(char direction, const std::string& line) const {
    std::printf("%s %c %s\n", timeOfDay().c_str(), direction, line.c_str());
    std::fflush(stdout);
}

void Output::note(const std::string& line) const {
    if (isRaw_) {
        std::fprintf(stderr, "%s\n", line.c_str());
    } else {
        show('-', line);
    }
}

} // namespace velloway::phone
