#pragma once

#include "tabs/Conversations.h"
#include "tabs/TabDependencies.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace velloway {

/// What several tabs share: the logs as the phone last sent them, what is worked out from those alone, and the
/// SIM that calls and messages go out with. Main thread only.
class PhoneState {
public:
    explicit PhoneState(const TabDependencies& dependencies);

    Observable<std::vector<SmsRecord>> phoneSmsLog;
    Observable<std::vector<CallRecord>> phoneCallLog;
    /// Becomes the first SIM whenever the SIMs change.
    Observable<std::int64_t> selectedSimSlot{0};

    // Worked out once for each change of the log that they come from, and valid until it changes again.

    const std::vector<Conversation>& conversations() const;
    const CallNames& callNames() const;

private:
    mutable std::optional<std::vector<Conversation>> conversations_;
    mutable std::optional<CallNames> callNames_;
    /// To tell a change from an assignment of the same SIMs.
    std::vector<SimInfo> lastSims_;
    std::array<Subscription, 5> subscriptions_;
};

} // namespace velloway
