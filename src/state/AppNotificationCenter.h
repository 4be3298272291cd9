#pragma once

#include "state/Observable.h"
#include "state/Records.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace velloway {

enum class AppNotification { prepareActiveCall, callDurationUpdated, smsHistoryUpdated, callHistoryUpdated };

/// The name of a notification, as diagnostics show it.
std::string_view name(AppNotification notification);

/// What a notification carries. Observers take what they understand and pass over anything else.
using AppNotificationObject =
    std::variant<std::monostate, std::int64_t, std::string, std::map<std::string, std::string>,
                 std::vector<SmsRecord>, std::vector<CallRecord>>;

/// Messages between the parts of the program that do not know one another. Main thread only; observers run
/// inside `post`.
class AppNotificationCenter {
public:
    using Observer = std::function<void(const AppNotificationObject&)>;

    void post(AppNotification notification, const AppNotificationObject& object);
    [[nodiscard]] Subscription observe(AppNotification notification, Observer observer);

private:
    std::map<AppNotification, ObserverList<AppNotificationObject>> observers_;
};

} // namespace velloway
