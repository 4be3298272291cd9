#include "features/BatteryAlerts.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace velloway {

namespace {

/// Falling: the first that fits is the alert.
constexpr std::array<BatteryThreshold, 6> thresholds{{
    {25, "🔋", "Battery is low — connect a charger."},
    {20, "🟡", "Getting low — find a charger."},
    {15, "🟡", "Running low — consider charging."},
    {10, "🟠", "Very low — connect a charger soon."},
    {5, "🔴", "Critically low — connect a charger now."},
    {0, "🪫", "Battery is empty — plug in immediately!"},
}};

} // namespace

struct BatteryAlerts::State {
    /// Cleared by nothing but the start of a charge.
    std::optional<std::int64_t> lastAlertThreshold;
};

const BatteryThreshold* nextBatteryAlert(std::int64_t level, std::optional<std::int64_t> lastAlertThreshold) {
    const auto found =
        std::find_if(thresholds.begin(), thresholds.end(), [&](const BatteryThreshold& threshold) {
            return level <= threshold.level && (!lastAlertThreshold || threshold.level < *lastAlertThreshold);
        });
    return found == thresholds.end() ? nullptr : &*found;
}

BatteryAlerts::BatteryAlerts(DispatchQueue& main, std::weak_ptr<StoreLink> link,
                             NotificationManager& notifications)
    : main_(main), link_(std::move(link)), notifications_(notifications), state_(std::make_shared<State>()) {}

void BatteryAlerts::report(std::optional<std::int64_t> level, bool isCharging) {
    hop(main_, link_, [state = state_, &notifications = notifications_, level, isCharging](StoreLink& link) {
        const auto store = link.historyStore.lock();
        const bool wasCharging = store && store->isCharging.get();
        if (store) {
            store->batteryLevel.set(level);
            store->isCharging.set(isCharging);
        }
        if (isCharging) {
            if (!wasCharging) {
                state->lastAlertThreshold.reset();
            }
            return;
        }
        const BatteryThreshold* alert = level ? nextBatteryAlert(*level, state->lastAlertThreshold) : nullptr;
        if (!alert) {
            return;
        }
        const std::string device =
            (store ? store->connectedDeviceName.get() : std::nullopt).value_or("Your Android");
        const std::string title =
            std::string(alert->emoji) + " " + device + " — " + std::to_string(*level) + "% Battery";
        notifications.postSimple(title, alert->message);
        state->lastAlertThreshold = alert->level;
    });
}

} // namespace velloway
