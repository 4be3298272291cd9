#include "phone/device/Adapters.h"

#include <cstdio>
#include <ctime>

namespace velloway::phone::device {

std::optional<std::int64_t> readTime(const std::string& text) {
    std::tm parts{};
    int count = 0;
    const int fields =
        std::sscanf(text.c_str(), "%4d-%2d-%2d %2d:%2d%n:%2d%n", &parts.tm_year, &parts.tm_mon, &parts.tm_mday,
                    &parts.tm_hour, &parts.tm_min, &count, &parts.tm_sec, &count);
    if (fields < 5 || static_cast<std::size_t>(count) != text.size()) {
        return std::nullopt;
    }
    parts.tm_year -= 1900;
    parts.tm_mon -= 1;
    parts.tm_isdst = -1;
    return static_cast<std::int64_t>(std::mktime(&parts)) * 1000;
}

std::string plainNumber(std::string_view text) {
    std::string number;
    bool hasDigit = false;
    for (const char letter : text) {
        if (letter >= '0' && letter <= '9') {
            hasDigit = true;
            number += letter;
        } else if (letter == '*' || letter == '#' || (letter == '+' && number.empty())) {
            number += letter;
        } else if (std::string_view(" -./()").find(letter) == std::string_view::npos) {
            return {};
        }
    }
    return hasDigit ? number : std::string();
}

} // namespace velloway::phone::device
