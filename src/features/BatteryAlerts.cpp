#include "features/BatteryAlerts.h"
namespace velloway {
struct BatteryAlerts::State {};
BatteryAlerts::BatteryAlerts(DispatchQueue& main, std::weak_ptr<StoreLink> link,
                             NotificationManager& notifications)
    : main_(main), link_(link), notifications_(notifications) {}
void BatteryAlerts::report(std::optional<std::int64_t>, bool) {}
const BatteryThreshold* nextBatteryAlert(std::int64_t, std::optional<std::int64_t>) {
    return nullptr;
}
} // namespace velloway
