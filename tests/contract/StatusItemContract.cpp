#include "desktop/TrayHost.h"
#include "desktop/WaitFor.h"
#include "hosts/linux/desktop/LinuxStatusItem.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velloway::test {
namespace {

using testing::ElementsAre;

const QString trayHost = QStringLiteral(TRAY_HOST);

/// The cases run in one process, so that the first of them shows that an item which came before its tray is no
/// worse off.
class LinuxStatusItemTest : public testing::Test {
protected:
    LinuxStatusItemTest() : item(std::make_unique<LinuxStatusItem>()) {
        item->create();
        item->setImage({.kind = StatusImage::Kind::asset, .name = "StatusIcon", .isTemplate = true});
        item->setMenu({
            {.title = "Velloway", .isEnabled = false},
            {.isSeparator = true},
            {.title = "Server: starting…", .tag = 1, .isEnabled = false},
            {.title = "Call…",
             .keyEquivalent = "c",
             .action = MenuItem::Action::call,
             .onChosen = [this] { chosen.emplace_back("call"); }},
            {.title = "Settings…",
             .keyEquivalent = ",",
             .action = MenuItem::Action::call,
             .onChosen = [this] { chosen.emplace_back("settings"); }},
        });
    }

    void startTray(const QStringList& arguments = {}) {
        tray.reset();
        tray = std::make_unique<TrayHost>(trayHost, arguments);
        ASSERT_TRUE(tray->isReady());
    }
    bool isShown() {
        return waitFor([this] { return tray->itemCount() == 1; });
    }
    QString statusLine() { return tray->ask("menu").toArray().at(2).toObject()["label"].toString(); }

    std::vector<std::string> chosen;
    std::unique_ptr<LinuxStatusItem> item;
    std::unique_ptr<TrayHost> tray;
};

TEST_F(LinuxStatusItemTest, AppearsInATrayThatComesLongAfterIt) {
    processPending();
    EXPECT_FALSE(item->isReachable());
    startTray();
    EXPECT_TRUE(isShown());
    EXPECT_TRUE(item->isReachable());
}

TEST_F(LinuxStatusItemTest, WaitsForAHostBehindTheService) {
    startTray({"--without-host"});
    EXPECT_FALSE(waitFor([this] { return tray->itemCount() > 0; }, std::chrono::milliseconds(300)));
    EXPECT_FALSE(item->isReachable());
    tray->ask("host on");
    EXPECT_TRUE(isShown());
}

TEST_F(LinuxStatusItemTest, ComesBackOnceWhenTheTrayRestarts) {
    startTray();
    ASSERT_TRUE(isShown());
    for (int restart = 0; restart < 3; ++restart) {
        tray.reset();
        ASSERT_TRUE(waitFor([this] { return !item->isReachable(); }));
        startTray();
        ASSERT_TRUE(isShown()) << restart;
        EXPECT_FALSE(waitFor([this] { return tray->itemCount() > 1; }, std::chrono::milliseconds(100)));
        EXPECT_EQ(statusLine(), "Server: starting…");
    }
}

TEST_F(LinuxStatusItemTest, ReportsEachChangeOfItsReachability) {
    std::vector<bool> heard;
    QObject::connect(item.get(), &LinuxStatusItem::reachabilityChanged,
                     [&] { heard.push_back(item->isReachable()); });
    startTray();
    ASSERT_TRUE(waitFor([&] { return heard.size() == 1; }));
    tray.reset();
    ASSERT_TRUE(waitFor([&] { return heard.size() == 2; }));
    EXPECT_THAT(heard, ElementsAre(true, false));
}

TEST_F(LinuxStatusItemTest, ShowsTheEntriesInOrderWithTheirStateAndKeys) {
    startTray();
    ASSERT_TRUE(isShown());
    const QJsonArray expected{
        QJsonObject{{"label", "Velloway"}, {"enabled", false}, {"shortcut", ""}},
        "---",
        QJsonObject{{"label", "Server: starting…"}, {"enabled", false}, {"shortcut", ""}},
        QJsonObject{{"label", "Call…"}, {"enabled", true}, {"shortcut", "Control+C"}},
        QJsonObject{{"label", "Settings…"}, {"enabled", true}, {"shortcut", "Control+,"}},
    };
    const QJsonArray shown = tray->ask("menu").toArray();
    EXPECT_TRUE(shown == expected) << QJsonDocument(shown).toJson().toStdString();
}

TEST_F(LinuxStatusItemTest, ANewTitleShowsInTheLiveMenu) {
    startTray();
    ASSERT_TRUE(isShown());
    item->setItemTitle(1, "Server: listening on 8765");
    EXPECT_EQ(statusLine(), "Server: listening on 8765");
    item->setItemTitle(1, "Server: last");
    EXPECT_EQ(statusLine(), "Server: last");
}

TEST_F(LinuxStatusItemTest, ATitleForAnUnknownTagChangesNothing) {
    startTray();
    ASSERT_TRUE(isShown());
    const QJsonValue before = tray->ask("menu");
    item->setItemTitle(99, "nobody");
    EXPECT_EQ(tray->ask("menu"), before);
}

TEST_F(LinuxStatusItemTest, ChoosingAnEntryRunsWhatItStandsFor) {
    startTray();
    ASSERT_TRUE(isShown());
    EXPECT_TRUE(tray->ask("click Settings…").toBool());
    EXPECT_TRUE(waitFor([this] { return !chosen.empty(); }));
    EXPECT_TRUE(tray->ask("click Call…").toBool());
    EXPECT_TRUE(waitFor([this] { return chosen.size() == 2; }));
    EXPECT_THAT(chosen, ElementsAre("settings", "call"));
}

TEST_F(LinuxStatusItemTest, AnEntryMayReplaceTheMenuWhileItRuns) {
    startTray();
    ASSERT_TRUE(isShown());
    item->setMenu({{.title = "Again", .onChosen = [this] {
                        chosen.emplace_back("again");
                        item->setMenu({{.title = "New"}});
                    }}});
    EXPECT_TRUE(tray->ask("click Again").toBool());
    ASSERT_TRUE(waitFor([this] { return !chosen.empty(); }));
    EXPECT_EQ(tray->ask("menu").toArray().at(0).toObject()["label"].toString(), "New");
}

TEST_F(LinuxStatusItemTest, HasANameAndAnIconThatIsNotBlank) {
    QGuiApplication::setApplicationDisplayName("Velloway");
    startTray();
    ASSERT_TRUE(isShown());
    const QJsonObject shown = tray->ask("item").toObject();
    EXPECT_EQ(shown["tooltip"].toString(), "Velloway");
    ASSERT_GT(shown["sizes"].toArray().size(), 1);
    for (const QJsonValue& opaque : shown["opaque"].toArray()) {
        EXPECT_TRUE(opaque.toBool());
    }
}

TEST_F(LinuxStatusItemTest, ANewImageShowsAtOnceAndInTheColourOfThePanel) {
    startTray();
    ASSERT_TRUE(isShown());
    const auto image = [this]() -> QJsonValue { return tray->ask("item").toObject()["sums"]; };
    const QJsonValue first = image();
    EXPECT_FALSE(first.toArray().isEmpty());
    item->setImage({.kind = StatusImage::Kind::symbol, .name = "antenna.radiowaves.left.and.right"});
    EXPECT_TRUE(waitFor([&] { return image() != first; }));
    const QJsonValue second = image();
    const QPalette before = QApplication::palette();
    QApplication::setPalette(QPalette(QColor(0x2a, 0x2a, 0x2a), QColor(0x2a, 0x2a, 0x2a)));
    EXPECT_TRUE(waitFor([&] { return image() != second; }));
    QApplication::setPalette(before);
    EXPECT_TRUE(waitFor([&] { return image() == second; }));
}

TEST_F(LinuxStatusItemTest, KnowsWhichImagesThereAre) {
    EXPECT_TRUE(item->hasButton());
    EXPECT_TRUE(item->hasImage({.kind = StatusImage::Kind::asset, .name = "StatusIcon"}));
    EXPECT_FALSE(item->hasImage({.kind = StatusImage::Kind::asset, .name = "NoSuchIcon"}));
}

TEST_F(LinuxStatusItemTest, GivesUpWaitingOnceWhenNoTrayComes) {
    LinuxStatusItem waiting(10);
    int times = 0;
    QObject::connect(&waiting, &LinuxStatusItem::trayWaitEnded, [&] { ++times; });
    waiting.create();
    EXPECT_TRUE(waitFor([&] { return times == 1; }));
    EXPECT_FALSE(waiting.isReachable());
}

TEST_F(LinuxStatusItemTest, AnEntryThatEndsTheProgramDoesSoByItselfOrByItsAction) {
    bool isChosen = false;
    LinuxStatusItem::choose({.action = MenuItem::Action::terminate, .onChosen = [&] { isChosen = true; }});
    EXPECT_TRUE(isChosen);
}

} // namespace
} // namespace velloway::test
