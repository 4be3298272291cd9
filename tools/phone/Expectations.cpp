#include "phone/Expectations.h"

#include "phone/Script.h"
#include "phone/Show.h"

namespace velloway::phone {

namespace {

constexpr std::size_t keptMessages = 10'000;
constexpr std::size_t keptText = 4096;

} // namespace

void Expectations::add(const std::string& message) {
    if (seen_.size() == keptMessages) {
        seen_.pop_front();
    }
    seen_.push_back(shortened(message, keptText));
}

bool Expectations::areMet() {
    while (pattern_ && !seen_.empty()) {
        const bool fits = matches(*pattern_, seen_.front());
        seen_.pop_front();
        if (fits) {
            pattern_.reset();
            return true;
        }
    }
    return false;
}

} // namespace velloway::phone
