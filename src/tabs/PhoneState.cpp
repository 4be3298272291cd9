#include "tabs/PhoneState.h"

#include <utility>
#include <variant>

namespace velloway {

namespace {

template <class Log>
Subscription replaceOn(AppNotification name, Observable<Log>& log, AppNotificationCenter& notifications) {
    return notifications.observe(name, [&log](const AppNotificationObject& object) {
        if (const auto* replacement = std::get_if<Log>(&object)) {
            log.set(*replacement);
        }
    });
}

} // namespace

// Every subscription ends with this, so that the observers may hold it plainly. Those of the logs come before
// all others, so that no other observer sees what was made from the log before.
PhoneState::PhoneState(const TabDependencies& dependencies)
    : lastSims_(dependencies.history->availableSIMs.get()),
      subscriptions_{phoneSmsLog.observe([this](const auto&) { conversations_.reset(); }),
                     phoneCallLog.observe([this](const auto&) { callNames_.reset(); }),
                     replaceOn(AppNotification::smsHistoryUpdated, phoneSmsLog, dependencies.notifications),
                     replaceOn(AppNotification::callHistoryUpdated, phoneCallLog, dependencies.notifications),
                     dependencies.history->availableSIMs.observe([this](const std::vector<SimInfo>& sims) {
                         if (std::exchange(lastSims_, sims) != sims && !sims.empty()) {
                             selectedSimSlot.set(sims.front().slot);
                         }
                     })} {}

const std::vector<Conversation>& PhoneState::conversations() const {
    if (!conversations_) {
        conversations_ = velloway::conversations(phoneSmsLog.get());
    }
    return *conversations_;
}

const CallNames& PhoneState::callNames() const {
    if (!callNames_) {
        callNames_.emplace(phoneCallLog.get());
    }
    return *callNames_;
}

} // namespace velloway
