#include "Probe.h"
#include "desktop/TrayHost.h"
#include "desktop/WaitFor.h"
#include "hosts/windows/XClient.h"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusMessage>

#include <chrono>
#include <memory>
#include <string>

namespace velloway::test {
namespace {

/// Longer than the program gives the tray of a desktop that is just starting.
constexpr std::chrono::milliseconds settled(2500);

bool isMenuShown() {
    return isWindowShown(QStringLiteral("Velloway"));
}

class Trayless : public testing::Test {
protected:
    /// Asks the running program as a launcher on the bus does.
    static void ask(const QString& method, const QVariantList& arguments) {
        QDBusMessage message = QDBusMessage::createMethodCall("org.velloway.Velloway", "/org/velloway/Velloway",
                                                              "org.freedesktop.Application", method);
        message.setArguments(arguments);
        QDBusConnection::sessionBus().call(message);
    }
    static void act(const QString& action) { ask("ActivateAction", {action, QVariantList(), QVariantMap()}); }

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
};

TEST_F(Trayless, WithoutATrayAWindowWithTheMenuShowsUpAndGoesWhenATrayComes) {
    Probe probe(environment);
    ASSERT_TRUE(probe.says("launched"));
    EXPECT_TRUE(waitFor(isMenuShown));
    TrayHost tray(QStringLiteral(TRAY_HOST));
    ASSERT_TRUE(tray.isReady());
    EXPECT_TRUE(waitFor([&] { return tray.itemCount() == 1; }));
    EXPECT_TRUE(waitFor([] { return !isMenuShown(); }));
}

TEST_F(Trayless, WithATrayNoWindowShowsUpAndItsMenuWorks) {
    TrayHost tray(QStringLiteral(TRAY_HOST));
    ASSERT_TRUE(tray.isReady());
    Probe probe(environment);
    ASSERT_TRUE(probe.says("launched"));
    ASSERT_TRUE(waitFor([&] { return tray.itemCount() == 1; }));
    EXPECT_FALSE(waitFor(isMenuShown, settled));
    tray.ask("click Send Clipboard");
    EXPECT_TRUE(probe.says("chosen Send Clipboard"));
    tray.ask("click Quit Velloway");
    EXPECT_TRUE(probe.ends());
    EXPECT_EQ(probe.exitCode(), 0);
}

TEST_F(Trayless, KeysOfTheMenuWorkInTheWindowAndClosingItEndsNothing) {
    Probe probe(environment);
    ASSERT_TRUE(waitFor(isMenuShown));
    QProcess::execute("xdotool", {"search", "--onlyvisible", "--name", "^Velloway$", "windowfocus", "--sync",
                                  "key", "ctrl+s"});
    EXPECT_TRUE(probe.says("chosen Send SMS…"));
    probe.command("close");
    EXPECT_TRUE(waitFor([] { return !isMenuShown(); }));
    EXPECT_TRUE(Probe(environment).says("handed over"));
}

TEST_F(Trayless, ASecondStartBringsTheWindowBack) {
    Probe probe(environment);
    ASSERT_TRUE(waitFor(isMenuShown));
    probe.command("close");
    ASSERT_TRUE(waitFor([] { return !isMenuShown(); }));
    EXPECT_TRUE(Probe(environment).says("handed over"));
    EXPECT_TRUE(waitFor(isMenuShown));
    EXPECT_TRUE(probe.says("reopen without windows"));
}

TEST_F(Trayless, ActionsOfTheDesktopEntryChooseTheirItemOfTheMenu) {
    TrayHost tray(QStringLiteral(TRAY_HOST));
    Probe probe(environment);
    ASSERT_TRUE(probe.says("launched"));
    act("no such action");
    for (const auto& [action, title] :
         {std::pair("send-clipboard", "Send Clipboard"), std::pair("call", "Call…"),
          std::pair("sms", "Send SMS…"), std::pair("file-drop", "File Drop…"),
          std::pair("notifications", "Notifications…"), std::pair("remote", "Remote Control…"),
          std::pair("clipboard", "Clipboard History…"), std::pair("settings", "Settings…"),
          std::pair("info", "Info…")}) {
        EXPECT_FALSE(probe.hasSaid(QByteArray("chosen ") + title));
        act(action);
        EXPECT_TRUE(probe.says(QByteArray("chosen ") + title)) << action;
    }
    EXPECT_FALSE(probe.hasSaid("reopen without windows"));
}

TEST_F(Trayless, FilesAndAddressesOfAPhoneGoTheirOwnWays) {
    TrayHost tray(QStringLiteral(TRAY_HOST));
    Probe probe(environment, {"tel:1"});
    EXPECT_TRUE(probe.says("links [tel:1]"));
    ask("Open", {QStringList{"file:///tmp/a", "sms:2", "file:///tmp/b"}, QVariantMap()});
    EXPECT_TRUE(probe.says("links [sms:2]"));
    EXPECT_TRUE(probe.says("files [/tmp/a] [/tmp/b]"));
    ask("Open", {QStringList{"file:///tmp/c"}, QVariantMap()});
    EXPECT_TRUE(probe.says("files [/tmp/c]"));
    EXPECT_FALSE(probe.hasSaid("no files"));
    EXPECT_FALSE(probe.hasSaid("links"));
}

TEST_F(Trayless, AStartForNobodyShowsNothingUntilTheUserComes) {
    for (const char* name : {"DESKTOP_AUTOSTART_ID", "DBUS_STARTER_ADDRESS"}) {
        QProcessEnvironment unattended = environment;
        unattended.insert(name, "10a");
        Probe probe(unattended);
        ASSERT_TRUE(probe.says("launched"));
        EXPECT_FALSE(waitFor(isMenuShown, settled)) << name;
        EXPECT_TRUE(Probe(environment).says("handed over"));
        EXPECT_TRUE(waitFor(isMenuShown)) << name;
        EXPECT_TRUE(probe.says("reopen without windows"));
    }
}

TEST_F(Trayless, AStartByTheBusForTheUserShowsWhatEveryStartShows) {
    environment.insert("DBUS_STARTER_ADDRESS", "10a");
    Probe probe(environment);
    ASSERT_TRUE(probe.says("launched"));
    ask("Activate", {QVariantMap()});
    EXPECT_TRUE(waitFor(isMenuShown));
    EXPECT_FALSE(probe.hasSaid("reopen without windows"));
}

TEST_F(Trayless, AFileForAStartByTheBusBringsNoMenu) {
    environment.insert("DBUS_STARTER_ADDRESS", "10a");
    Probe probe(environment);
    ASSERT_TRUE(probe.says("launched"));
    ask("Open", {QStringList{"file:///tmp/a"}, QVariantMap()});
    EXPECT_TRUE(probe.says("files [/tmp/a]"));
    EXPECT_FALSE(waitFor(isMenuShown, settled));
}

TEST_F(Trayless, ASecondStartBringsAWindowForwardThatIsThereAlready) {
    TrayHost tray(QStringLiteral(TRAY_HOST));
    Probe probe(environment);
    ASSERT_TRUE(probe.says("launched"));
    probe.command("window");
    ASSERT_TRUE(waitFor([] { return isWindowShown(QStringLiteral("Probe")); }));
    ASSERT_TRUE(waitFor([&] { return tray.itemCount() == 1; }));
    XClient client;
    const xcb_window_t above = client.makeWindow(0, 0, 1280, 800);
    client.show(above);
    ASSERT_EQ(client.topWindow(), above);
    EXPECT_TRUE(Probe(environment).says("handed over"));
    EXPECT_TRUE(probe.says("reopen with windows"));
    EXPECT_TRUE(waitFor([&] { return client.topWindow() != above; }));
    EXPECT_FALSE(isMenuShown());
}

TEST_F(Trayless, TheEndOfAStartIsReportedToTheDesktop) {
    TrayHost tray(QStringLiteral(TRAY_HOST));
    const auto removal = [](const XClient::Message& message) {
        return message.type.starts_with("_NET_STARTUP_INFO");
    };
    XClient client;
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(client.get(), client.root(), XCB_CW_EVENT_MASK, &mask);
    client.sync();
    const auto isReported = [&] {
        const auto messages = client.takeMessages();
        return std::any_of(messages.begin(), messages.end(), removal);
    };
    QProcessEnvironment user = environment;
    user.insert("DESKTOP_STARTUP_ID", "of the first start");
    Probe probe(user);
    ASSERT_TRUE(probe.says("launched"));
    EXPECT_TRUE(waitFor(isReported));
    while (isReported()) {
    }
    ask("Activate", {QVariantMap{{"desktop-startup-id", "of another"}}});
    EXPECT_TRUE(probe.says("reopen without windows"));
    EXPECT_TRUE(waitFor(isReported));
}

} // namespace
} // namespace velloway::test
