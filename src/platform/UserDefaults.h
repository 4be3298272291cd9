#pragma once

#include "platform/Subscription.h"

#include <cstdint>
#include <functional>
#include <string_view>

namespace velloway {

/// The few values that outlive the process. Main thread only, but for `integer`, which any thread may call.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    /// 0 when nothing, or no integer, is stored under `key`.
    virtual std::int64_t integer(std::string_view key) const = 0;
    virtual bool has(std::string_view key) const = 0;
    virtual void setInteger(std::string_view key, std::int64_t value) = 0;

    /// Calls back on the main thread after each write of `key`, also when the value stays the same.
    [[nodiscard]] virtual Subscription observe(std::string_view key,
                                               std::function<void(std::int64_t)> observer) = 0;
};

} // namespace velloway
