#include "features/BatteryAlerts.h"
#include "features/FeatureTest.h"

namespace velloway::test {

namespace {

using Level = std::optional<std::int64_t>;

class BatteryAlertsTest : public FeatureTest {
protected:
    /// The titles and bodies that one report brings.
    Banners report(Level level, bool isCharging = false) {
        const std::size_t before = host.notificationCenter.requests.size();
        alerts.report(level, isCharging);
        host.main.runAll();
        const Banners all = banners();
        return {all.begin() + static_cast<std::ptrdiff_t>(before), all.end()};
    }

    static Banners alert(const std::string& title, const std::string& body) { return {{title, body}}; }
    static Banners low(int level) {
        return alert("🔋 Your Android — " + std::to_string(level) + "% Battery",
                     "Battery is low — connect a charger.");
    }

    BatteryAlerts alerts{host.main, link, notificationManager};
};

} // namespace

TEST_F(BatteryAlertsTest, WarnsAtExactlyTwentyFive) {
    EXPECT_EQ(report(26), Banners{});
    EXPECT_EQ(report(25), low(25));
}

TEST_F(BatteryAlertsTest, WarnsOncePerStep) {
    EXPECT_EQ(report(25), low(25));
    EXPECT_EQ(report(25), Banners{});
    EXPECT_EQ(report(21), Banners{});
    EXPECT_EQ(report(20).size(), 1u);
    EXPECT_EQ(report(24), Banners{});
    EXPECT_EQ(report(19), Banners{});
    EXPECT_EQ(report(15).size(), 1u);
}

TEST_F(BatteryAlertsTest, CatchesUpStepByStepFromAnEmptyBattery) {
    EXPECT_EQ(report(0), low(0));
    EXPECT_EQ(report(0), alert("🟡 Your Android — 0% Battery", "Getting low — find a charger."));
    EXPECT_EQ(report(0), alert("🟡 Your Android — 0% Battery", "Running low — consider charging."));
    EXPECT_EQ(report(0), alert("🟠 Your Android — 0% Battery", "Very low — connect a charger soon."));
    EXPECT_EQ(report(0), alert("🔴 Your Android — 0% Battery", "Critically low — connect a charger now."));
    EXPECT_EQ(report(0), alert("🪫 Your Android — 0% Battery", "Battery is empty — plug in immediately!"));
    EXPECT_EQ(report(0), Banners{});
    EXPECT_EQ(report(-5), Banners{});
}

TEST_F(BatteryAlertsTest, WalksTheStepsForANegativeLevelToo) {
    EXPECT_EQ(report(-3), low(-3));
    EXPECT_EQ(report(-3), alert("🟡 Your Android — -3% Battery", "Getting low — find a charger."));
}

TEST_F(BatteryAlertsTest, StartsAfreshWhenTheChargerGoesIn) {
    EXPECT_EQ(report(10), low(10));
    EXPECT_EQ(report(10, true), Banners{});
    EXPECT_EQ(report(10), low(10));
}

TEST_F(BatteryAlertsTest, StartsAfreshWhenTheChargerGoesInWithoutALevel) {
    EXPECT_EQ(report(10), low(10));
    EXPECT_EQ(report({}, true), Banners{});
    EXPECT_EQ(report(10), low(10));
}

TEST_F(BatteryAlertsTest, WarnsAfterAChargeThatEndedAbove) {
    EXPECT_EQ(report(30, true), Banners{});
    EXPECT_EQ(report(20), low(20));
}

TEST_F(BatteryAlertsTest, StaysSilentWhileCharging) {
    EXPECT_EQ(report(10, true), Banners{});
    EXPECT_EQ(report(10, true), Banners{});
    EXPECT_EQ(report(3, true), Banners{});
    EXPECT_EQ(store->batteryLevel.get(), 3);
}

TEST_F(BatteryAlertsTest, ForgetsOnlyOnTheRisingEdgeOfCharging) {
    EXPECT_EQ(report(25), low(25));
    EXPECT_EQ(report(80), Banners{});
    EXPECT_EQ(report(25), Banners{});
    store->isCharging.set(true);
    EXPECT_EQ(report(25, true), Banners{});
    EXPECT_EQ(report(25), Banners{}) << "it was charging before, so nothing was forgotten";
}

TEST_F(BatteryAlertsTest, BlanksTheLevelAndStaysSilentWhenItIsAbsent) {
    report(50, true);
    EXPECT_EQ(report({}, false), Banners{});
    EXPECT_EQ(store->batteryLevel.get(), std::nullopt);
    EXPECT_FALSE(store->isCharging.get());
}

TEST_F(BatteryAlertsTest, NamesTheDevice) {
    store->connectedDeviceName.set("Pixel");
    EXPECT_EQ(report(17), alert("🔋 Pixel — 17% Battery", "Battery is low — connect a charger."));
    store->connectedDeviceName.set("");
    EXPECT_EQ(report(17), alert("🟡  — 17% Battery", "Getting low — find a charger."));
}

TEST_F(BatteryAlertsTest, ChangesTheStoreOnlyOnTheMainQueue) {
    alerts.report(40, true);
    EXPECT_EQ(store->batteryLevel.get(), std::nullopt);
    host.main.runAll();
    EXPECT_EQ(store->batteryLevel.get(), 40);
    EXPECT_TRUE(store->isCharging.get());
}

TEST_F(BatteryAlertsTest, WarnsWithoutAStoreAndTakesItForNotChargingBefore) {
    link->historyStore.reset();
    EXPECT_EQ(report(8), low(8));
    EXPECT_EQ(report(8, true), Banners{});
    EXPECT_EQ(report(8), low(8));
}

TEST_F(BatteryAlertsTest, DoesNothingWhenTheServerHasGone) {
    alerts.report(5, false);
    link.reset();
    host.main.runAll();
    EXPECT_EQ(banners(), Banners{});
    EXPECT_EQ(store->batteryLevel.get(), std::nullopt);
}

TEST(BatteryThresholds, AreSearchedFromTheHighest) {
    struct {
        std::int64_t level;
        Level last;
        Level next;
    } const cases[] = {
        {26, {}, {}}, {25, {}, 25}, {3, {}, 25}, {20, 25, 20}, {21, 25, {}}, {15, 20, 15},
        {16, 20, {}}, {10, 15, 10}, {5, 10, 5},  {6, 10, {}},  {0, 5, 0},    {1, 5, {}},
        {0, 0, {}},   {-9, 0, {}},  {-9, 5, 0},  {100, 0, {}}, {0, 25, 20},
    };
    for (const auto& [level, last, next] : cases) {
        const BatteryThreshold* found = nextBatteryAlert(level, last);
        EXPECT_EQ(found ? Level(found->level) : std::nullopt, next) << level << " after " << last.value_or(-1);
    }
}

} // namespace velloway::test
