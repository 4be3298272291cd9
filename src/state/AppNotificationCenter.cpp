#include "state/AppNotificationCenter.h"

#include <utility>

namespace velloway {

std::string_view name(AppNotification notification) {
    switch (notification) {
    case AppNotification::prepareActiveCall:
        return "PrepareActiveCall";
    case AppNotification::callDurationUpdated:
        return "CallDurationUpdated";
    case AppNotification::smsHistoryUpdated:
        return "SmsHistoryUpdated";
    case AppNotification::callHistoryUpdated:
        return "CallHistoryUpdated";
    }
    return "";
}

void AppNotificationCenter::post(AppNotification notification, const AppNotificationObject& object) {
    observers_[notification].notify(object);
}

Subscription AppNotificationCenter::observe(AppNotification notification, Observer observer) {
    return observers_[notification].add(std::move(observer));
}

} // namespace velloway
