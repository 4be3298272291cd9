#pragma once

#include "features/NotificationManager.h"
#include "platform/DispatchQueue.h"
#include "state/StoreLink.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace velloway {

struct BatteryThreshold {
    std::int64_t level;
    std::string_view emoji;
    std::string_view message;
};

/// The highest threshold at or above `level` that lies below the one last alerted, or null.
const BatteryThreshold* nextBatteryAlert(std::int64_t level, std::optional<std::int64_t> lastAlertThreshold);

/// Keeps the store's battery reading and warns once for each step on the way down.
class BatteryAlerts {
public:
    BatteryAlerts(DispatchQueue& main, std::weak_ptr<StoreLink> link, NotificationManager& notifications);

    /// Server queue.
    void report(std::optional<std::int64_t> level, bool isCharging);

private:
    struct State;

    DispatchQueue& main_;
    std::weak_ptr<StoreLink> link_;
    NotificationManager& notifications_;
    /// Shared with the jobs on the main queue, the only place where it is touched.
    std::shared_ptr<State> state_;
};

} // namespace velloway
