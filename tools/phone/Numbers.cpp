#include "phone/Numbers.h"

#include <chrono>
#include <cmath>
#include <cstdlib>

namespace velloway::phone {

std::optional<double> readNumber(const std::string& text) {
    if (text.empty() || text.find_first_not_of("0123456789.eE+-") != std::string::npos || text[0] == '+') {
        return std::nullopt;
    }
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (end != text.c_str() + text.size() || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

double millisecondsNow() {
    const auto since = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<double>(std::chrono::duration_cast<std::chrono::milliseconds>(since).count());
}

} // namespace velloway::phone
