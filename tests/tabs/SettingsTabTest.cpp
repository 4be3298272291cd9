#include "tabs/TabHarness.h"
#include "tabs/info/InfoTexts.h"
#include "tabs/settings/SettingsTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SettingsTabTest : public testing::Test, protected TabHarness {
protected:
    SettingsTabTest() { store.connectedRemoteIP.set(std::nullopt); }
};

// Status

TEST_F(SettingsTabTest, OnlyTheAddressTellsWhetherAPhoneIsConnected) {
    store.connectedDeviceName.set("Pixel");
    store.batteryLevel.set(50);
    EXPECT_EQ(view->settings.status.get(),
              (StatusRow{.isConnected = false,
                         .symbol = "exclamationmark.triangle.fill",
                         .color = ColorRole::red,
                         .headline = "Not Connected",
                         .detail = "Download 'Velloway Android' and enter this IP and Port in the app settings "
                                   "to link your devices."}));
}

TEST_F(SettingsTabTest, WithTheAddressAloneTheRowShowsIt) {
    store.connectedRemoteIP.set("10.0.0.9");
    EXPECT_EQ(view->settings.status.get(), (StatusRow{.isConnected = true,
                                                      .symbol = "checkmark.circle.fill",
                                                      .color = ColorRole::green,
                                                      .detail = "IP: 10.0.0.9"}));
}

TEST_F(SettingsTabTest, NamesTakeThePlaceOfTheAddress) {
    store.connectedRemoteIP.set("10.0.0.9");
    store.connectedDeviceName.set("Pixel");
    store.connectedWifiName.set("Home");
    EXPECT_EQ(view->settings.status.get().headline, "Pixel");
    EXPECT_EQ(view->settings.status.get().detail, "Home");
}

TEST_F(SettingsTabTest, TheBatteryIsRedBelow20) {
    store.connectedRemoteIP.set("10.0.0.9");
    EXPECT_EQ(view->settings.status.get().battery, std::nullopt);
    store.batteryLevel.set(19);
    EXPECT_EQ(view->settings.status.get().battery, (BatteryLabel{"battery.100", ColorRole::red, "19%"}));
    store.batteryLevel.set(20);
    EXPECT_EQ(view->settings.status.get().battery, (BatteryLabel{"battery.100", ColorRole::primary, "20%"}));
    store.isCharging.set(true);
    EXPECT_EQ(view->settings.status.get().battery->symbol, "battery.100.bolt");
}

TEST_F(SettingsTabTest, TheStatusFollowsTheStore) {
    int redraws = 0;
    const auto observer = view->settings.status.observe([&] { ++redraws; });
    store.connectedRemoteIP.set("10.0.0.9");
    store.connectedDeviceName.set("Pixel");
    store.connectedWifiName.set("Home");
    store.batteryLevel.set(3);
    store.isCharging.set(true);
    EXPECT_EQ(redraws, 5);
}

// Local address

TEST_F(SettingsTabTest, TheLocalAddressIsReadAfreshAlsoForTheCopy) {
    EXPECT_EQ(view->settings.localIP.get(), "10.0.0.5");
    localIP = "10.0.0.6";
    EXPECT_EQ(view->settings.localIP.get(), "10.0.0.6");
    on.journal.take();
    view->settings.copyLocalIP();
    EXPECT_THAT(on.journal.entries(), ElementsAre("pasteboard clear", "pasteboard set 10.0.0.6"));
}

// Port

TEST_F(SettingsTabTest, AChangedPortIsStoredAndOffersARestart) {
    EXPECT_EQ(view->settings.portText.get(), "8765");
    view->settings.commitPort("9000");
    EXPECT_EQ(view->settings.port.get(), 9000);
    EXPECT_EQ(on.userDefaults.integer("port"), 9000);
    EXPECT_TRUE(view->settings.serverRestartNeeded.get());
    EXPECT_EQ(view->settings.portText.get(), "9000");
    view->settings.commitPort("8765");
    EXPECT_EQ(on.userDefaults.integer("port"), 8765);
    EXPECT_TRUE(view->settings.serverRestartNeeded.get()) << "changing it back leaves the button";
    view->settings.commitPort("8765");
    EXPECT_TRUE(view->settings.serverRestartNeeded.get());
}

TEST_F(SettingsTabTest, LeavingTheFieldWithoutAChangeOffersNoRestart) {
    view->settings.commitPort("8765");
    EXPECT_FALSE(view->settings.serverRestartNeeded.get());
    EXPECT_FALSE(on.userDefaults.has("port"));
}

TEST_F(SettingsTabTest, TextThatIsNoNumberLeavesThePort) {
    for (const char* text : {"", " ", "abc", "12ab", "8765.5", "0x10", "99999999999999999999", "1e3", "-"}) {
        view->settings.commitPort(text);
        EXPECT_EQ(view->settings.port.get(), 8765) << text;
    }
    EXPECT_FALSE(view->settings.serverRestartNeeded.get());
    EXPECT_FALSE(on.userDefaults.has("port"));
}

TEST_F(SettingsTabTest, AnyNumberIsTaken) {
    const std::vector<std::pair<std::string, std::int64_t>> cases{
        {" 9000 ", 9000}, {"0", 0}, {"-5", -5}, {"70000", 70000}, {"٩٠٠٠", 9000}, {"0080", 80}};
    for (const auto& [text, number] : cases) {
        view->settings.commitPort(text);
        EXPECT_EQ(view->settings.port.get(), number) << text;
    }
}

TEST(PortTextTest, IsWithoutGroupingInTheDigitsOfTheLocale) {
    EXPECT_EQ(portText(8765, "en_GB"), "8765");
    EXPECT_EQ(portText(65535, "de_DE"), "65535");
    EXPECT_EQ(portText(8765, "ar_EG"), "٨٧٦٥");
    EXPECT_EQ(parsePort(portText(8765, "ar_EG"), "ar_EG"), 8765);
    EXPECT_EQ(parsePort("8.765", "de_DE"), std::nullopt);
    EXPECT_EQ(parsePort("8,765", "en_GB"), std::nullopt);
}

TEST_F(SettingsTabTest, APortStoredElsewhereIsFollowed) {
    on.userDefaults.setInteger("port", 7000);
    EXPECT_EQ(view->settings.port.get(), 7000);
    EXPECT_TRUE(view->settings.serverRestartNeeded.get());
}

TEST_F(SettingsTabTest, RestartListensOnTheNewPortAndHidesTheButtonAtOnce) {
    view->settings.commitPort("9000");
    on.journal.take();
    on.network.makeError = NetworkError{.localizedDescription = "in use"};
    std::size_t stepsBefore = 0;
    const auto flag =
        view->settings.serverRestartNeeded.observe([&](bool) { stepsBefore = on.journal.entries().size(); });
    view->settings.restartServer();
    EXPECT_EQ(stepsBefore, on.journal.entries().size()) << "the server comes first";
    EXPECT_FALSE(view->settings.serverRestartNeeded.get()) << "whether or not the listener comes up";
    EXPECT_THAT(on.journal.entries(), testing::Contains("listener make 9000"));
}

// Permissions and login

TEST(NotificationPermissionRowTest, FollowsTheStatus) {
    using Row = NotificationPermissionRow;
    const std::vector<std::pair<AuthorizationStatus, Row>> cases{
        {AuthorizationStatus::notDetermined, Row::requestPermission},
        {AuthorizationStatus::denied, Row::openSettings},
        {AuthorizationStatus::authorized, Row::enabled},
        {AuthorizationStatus::provisional, Row::enabled},
        {AuthorizationStatus::ephemeral, Row::enabled},
        {AuthorizationStatus::unknown, Row::none}};
    for (const auto& [status, row] : cases) {
        EXPECT_EQ(notificationPermissionRow(status), row) << static_cast<int>(status);
    }
}

TEST_F(SettingsTabTest, RequestingThePermissionReadsTheStatusAfterAnyAnswer) {
    for (const bool granted : {true, false}) {
        on.journal.take();
        view->settings.requestNotificationPermission();
        EXPECT_THAT(on.journal.entries(), ElementsAre("request authorization 7"));
        on.notificationCenter.answerAuthorization(granted);
        on.drain();
        ASSERT_EQ(on.notificationCenter.statusQueries.size(), 1u);
        const auto status = granted ? AuthorizationStatus::authorized : AuthorizationStatus::denied;
        on.notificationCenter.answerStatus(status);
        on.drain();
        EXPECT_EQ(view->settings.notifAuthStatus.get(), status);
    }
}

TEST_F(SettingsTabTest, ABlockedPermissionLeadsToTheSystemsSettings) {
    view->settings.openNotificationSettings();
    EXPECT_THAT(on.workspace.panes, ElementsAre(SettingsPane::notifications));
    EXPECT_THAT(on.notificationCenter.statusQueries, IsEmpty());
}

TEST_F(SettingsTabTest, EachChangeOfTheLoginSwitchIsPassedOnAndItsStateKept) {
    view->settings.launchAtLogin.set(true);
    view->settings.launchAtLogin.set(true);
    EXPECT_THAT(loginChanges, ElementsAre(true));
    EXPECT_TRUE(view->settings.launchAtLogin.get()) << "also when the system did not follow";
    view->settings.launchAtLogin.set(false);
    EXPECT_THAT(loginChanges, ElementsAre(true, false));
}

// Info

TEST_F(SettingsTabTest, TheProfileOpensInTheBrowser) {
    view->info.openProfile();
    EXPECT_THAT(on.workspace.opened, ElementsAre(std::string(productOwner::profileLink)));
}

TEST(SettingsTextsTest, AreExact) {
    EXPECT_EQ(textOf(settingsTexts, "serverFooter"),
              "Tip: For a permanent connection, reserve this IP address for your Mac in your router's DHCP "
              "settings. This prevents the address from changing and disconnecting your Android device.");
    EXPECT_EQ(textOf(settingsTexts, "blocked"), "Blocked - Open System Settings");
    EXPECT_EQ(textOf(infoTexts, "version"), "Version 1.0 (Build 1)");
    EXPECT_EQ(textOf(infoTexts, "description"),
              "Professional notification bridging between Android and macOS. Secure, local, and real-time "
              "communication over your WiFi network.");
}

} // namespace
} // namespace velloway::test
