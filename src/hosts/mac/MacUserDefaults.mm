#include "hosts/mac/MacUserDefaults.h"

#include "hosts/mac/MacText.h"

namespace velloway {

std::int64_t MacUserDefaults::integer(std::string_view key) const {
    return [NSUserDefaults.standardUserDefaults integerForKey:nsString(key)];
}

bool MacUserDefaults::has(std::string_view key) const {
    return [NSUserDefaults.standardUserDefaults objectForKey:nsString(key)] != nil;
}

void MacUserDefaults::setInteger(std::string_view key, std::int64_t value) {
    [NSUserDefaults.standardUserDefaults setInteger:value forKey:nsString(key)];
    if (const auto found = observers_.find(key); found != observers_.end()) {
        found->second.notify(value);
    }
}

Subscription MacUserDefaults::observe(std::string_view key, std::function<void(std::int64_t)> observer) {
    return observers_[std::string(key)].add(std::move(observer));
}

} // namespace velloway
