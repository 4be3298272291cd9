#pragma once

#include "platform/UserDefaults.h"
#include "state/Observable.h"

#include <map>
#include <string>

namespace velloway {

/// The standard user defaults. Observers hear of the writes of this process, not of those from outside.
class MacUserDefaults final : public UserDefaults {
public:
    std::int64_t integer(std::string_view key) const override;
    bool has(std::string_view key) const override;
    void setInteger(std::string_view key, std::int64_t value) override;
    [[nodiscard]] Subscription observe(std::string_view key,
                                       std::function<void(std::int64_t)> observer) override;

private:
    std::map<std::string, ObserverList<std::int64_t>, std::less<>> observers_;
};

} // namespace velloway
