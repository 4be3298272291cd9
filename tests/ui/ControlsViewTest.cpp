// What comes and goes with time or with the contents of a list: tips, scroll bars, rows in use and out of it.
#include "tabs/Style.h"
#include "ui/ViewTest.h"

#include <QAccessible>
#include <QElapsedTimer>

#include <functional>
#include <set>

namespace velloway::test {
namespace {

class ControlsViewTest : public ViewTest {
protected:
    static QColor light(std::string_view name) {
        const auto* found = std::find_if(std::begin(palette), std::end(palette),
                                         [&](const PaletteColor& color) { return color.name == name; });
        if (found == std::end(palette)) {
            throw std::runtime_error("no such colour");
        }
        return QColor::fromRgba(found->light);
    }
    static QColor colorOf(const QObject* part) { return part->property("color").value<QColor>(); }
    static QColor borderOf(const QObject* part) {
        return part->property("border").value<QObject*>()->property("color").value<QColor>();
    }

    /// The tip on show in a window, or null.
    static QObject* tip(QQuickWindow& window) { return tipBelow(window.contentItem()); }
    static QObject* tipBelow(QQuickItem* item) {
        if (item->isVisible() && item->parent() && item->parent()->inherits("QQuickToolTip")) {
            return item->parent();
        }
        for (QQuickItem* child : item->childItems()) {
            if (QObject* found = tipBelow(child)) {
                return found;
            }
        }
        return nullptr;
    }

    void expectTip(QQuickItem* button, const char* expected) {
        QQuickWindow& window = *button->window();
        QElapsedTimer rest;
        rest.start();
        QTest::mouseMove(&window,
                         button->mapToScene({button->width() / 2 - 2, button->height() / 2}).toPoint());
        QTest::mouseMove(&window, button->mapToScene({button->width() / 2, button->height() / 2}).toPoint());
        require(expected, [&] { return tip(window) != nullptr; });
        EXPECT_GE(rest.elapsed(), 550) << "not at once";
        QObject* shown = tip(window);
        EXPECT_EQ(shown->property("text").toString(), expected);
        EXPECT_EQ(shown->property("delay").toInt(), 600);
        EXPECT_EQ(shown->property("padding").toInt(), 6);
        const auto* content = shown->property("contentItem").value<QObject*>();
        EXPECT_EQ(content->property("text").toString(), expected);
        EXPECT_EQ(content->property("font").value<QFont>().pixelSize(), 11);
        EXPECT_EQ(colorOf(content), light("primary"));
        const auto* ground = shown->property("background").value<QObject*>();
        EXPECT_EQ(colorOf(ground), light("panelOpaque"));
        EXPECT_EQ(borderOf(ground), light("outline"));
        EXPECT_EQ(ground->property("radius").toInt(), 5);
        QTest::mouseMove(&window, {2, 2});
        EXPECT_TRUE(wait([&] { return tip(window) == nullptr; })) << "it goes with the pointer";
    }

    void fillChat(int count) {
        std::vector<SmsRecord> log;
        for (int i = 0; i < count; ++i) {
            log.push_back({"1", std::nullopt, "message " + std::to_string(i), 1.6999e12 + i * 60'000.0, 1});
        }
        state().phone.phoneSmsLog.set(log);
        settle();
    }

    static std::size_t spokenRows(const std::string& start) {
        std::size_t count = 0;
        const std::function<void(QAccessibleInterface*)> visit = [&](QAccessibleInterface* part) {
            if (!part || !part->isValid() || part->state().invisible) {
                return;
            }
            count += part->role() != QAccessible::StaticText &&
                     part->text(QAccessible::Name).toStdString().find(start) != std::string::npos;
            for (int i = 0; i < part->childCount(); ++i) {
                visit(part->child(i));
            }
        };
        visit(QAccessible::queryAccessibleInterface(mainWindow()));
        return count;
    }

    /// Fills a list, empties it to two rows and fills it again, which uses its rows anew.
    void expectRowsAnew(const char* row, const std::string& spoken, const std::function<void(int)>& fill) {
        QAccessible::setActive(true);
        fill(40);
        const std::size_t many = all(row).size();
        ASSERT_GT(many, 4u);
        fill(2);
        EXPECT_TRUE(wait([&] { return all(row).size() == 2; })) << row;
        EXPECT_EQ(spokenRows(spoken), 2u) << row;
        fill(40);
        EXPECT_TRUE(wait([&] { return all(row).size() >= many; })) << row;
    }
};

TEST_F(ControlsViewTest, AButtonWithATipShowsItUnderAPointerThatRests) {
    open(7);
    for (int i = 0;; ++i) {
        QQuickItem* button = part(("remote" + std::to_string(i)).c_str());
        if (const QByteArray expected = button->property("tip").toString().toUtf8(); !expected.isEmpty()) {
            expectTip(button, expected);
            break;
        }
    }
    open(6);
    program.historyStore().addClipboard("a");
    settle();
    expectTip(part("copy"), "Copy to Mac Clipboard");
}

TEST_F(ControlsViewTest, TheButtonsOfThePanelHaveTips) {
    program.historyStore().incomingCallInfo.set(IncomingCallInfo{"123", "Bob"});
    drawnPanel();
    const QByteArray expected = part("left", panel())->property("tip").toString().toUtf8();
    ASSERT_FALSE(expected.isEmpty());
    expectTip(part("left", panel()), expected);
}

TEST_F(ControlsViewTest, AButtonWithoutATipShowsNone) {
    open(2);
    QQuickItem* button = part("refresh");
    QTest::mouseMove(&openWindow(), button->mapToScene({5, 5}).toPoint());
    QTest::mouseMove(&openWindow(), button->mapToScene({6, 6}).toPoint());
    settle();
    ASSERT_TRUE(button->property("hovered").toBool());
    EXPECT_FALSE(waitFor([] { return tip(openWindow()) != nullptr; }, std::chrono::milliseconds(750)));
}

TEST_F(ControlsViewTest, TheScrollBarIsSeenWhileItIsUsed) {
    open(2);
    state().sms.activeRecipient.set("1");
    fillChat(100);
    QQuickItem* list = part("messages");
    QQuickItem* bar = nullptr;
    for (QQuickItem* child : list->childItems()) {
        bar = child->inherits("QQuickScrollBar") ? child : bar;
    }
    ASSERT_NE(bar, nullptr);
    EXPECT_EQ(bar->property("padding").toInt(), 2);
    EXPECT_NEAR(bar->property("minimumSize").toDouble(), 0.06, 1e-6);
    const auto* thumb = bar->property("contentItem").value<QQuickItem*>();
    EXPECT_EQ(thumb->width(), 6);
    EXPECT_EQ(thumb->property("radius").toInt(), 3);
    EXPECT_EQ(colorOf(thumb), light("secondary"));
    const auto becomes = [&](double opacity) {
        return wait([&] { return std::abs(thumb->opacity() - opacity) < 0.001; });
    };
    EXPECT_TRUE(becomes(0)) << "at rest";
    bar->setProperty("active", true);
    EXPECT_TRUE(becomes(0.4)) << "while the list moves";
    const QPoint middle = thumb->mapToScene({3, thumb->height() / 2}).toPoint();
    QTest::mouseMove(&openWindow(), middle - QPoint(0, 1));
    QTest::mouseMove(&openWindow(), middle);
    EXPECT_TRUE(becomes(0.6)) << "under the pointer";
    const double before = list->property("contentY").toDouble();
    QTest::mousePress(&openWindow(), Qt::LeftButton, {}, middle);
    EXPECT_TRUE(becomes(0.8)) << "when it is held";
    QTest::mouseMove(&openWindow(), middle - QPoint(0, 60));
    QTest::mouseRelease(&openWindow(), Qt::LeftButton, {}, middle - QPoint(0, 60));
    EXPECT_LT(list->property("contentY").toDouble(), before - 100);
}

TEST_F(ControlsViewTest, RowsOutOfUseAreNotThereAndRowsInUseAre) {
    open(2);
    expectRowsAnew("thread", ", hello", [&](int count) {
        std::vector<SmsRecord> log;
        for (int i = 0; i < count; ++i) {
            log.push_back({std::to_string(100 + i), std::nullopt, "hello", 1.6999e12 + i, 1});
        }
        state().phone.phoneSmsLog.set(log);
        settle();
    });
    state().sms.activeRecipient.set("1");
    expectRowsAnew("bubble", ": message", [&](int count) { fillChat(count); });
    open(4);
    expectRowsAnew("recentCall", "Incoming call", [&](int count) {
        std::vector<CallRecord> log;
        for (int i = 0; i < count; ++i) {
            log.push_back({std::to_string(100 + i), std::nullopt, 1.6999e12 - i * 60'000.0, 3, 1});
        }
        state().phone.phoneCallLog.set(log);
        settle();
    });
    open(5);
    expectRowsAnew("transfer", "file", [&](int count) {
        std::vector<FileTransferRecord> records;
        for (int i = 0; i < count; ++i) {
            records.push_back({.id = Uuid::random(), .fileName = "file" + std::to_string(i)});
        }
        program.historyStore().fileTransfers.set(records);
        settle();
    });
}

TEST_F(ControlsViewTest, KeysThatNobodyUsesAreLeftToOthers) {
    for (const int tab : {0, 1, 2, 3, 4, 5, 6, 7}) {
        open(tab);
        for (const char* from : {"detail", "sidebar"}) {
            part(from)->forceActiveFocus();
            QKeyEvent press(QEvent::KeyPress, Qt::Key_F7, Qt::NoModifier);
            QGuiApplication::sendEvent(&openWindow(), &press);
            EXPECT_FALSE(press.isAccepted()) << tab << ' ' << from;
            QKeyEvent find(QEvent::KeyPress, Qt::Key_F, Qt::ControlModifier);
            QGuiApplication::sendEvent(&openWindow(), &find);
            EXPECT_EQ(find.isAccepted(), tab == 2) << tab << ' ' << from;
        }
    }
}

TEST_F(ControlsViewTest, TheDividerFollowsBetweenItsEnds) {
    ContentView& window = open(0);
    const auto end = [&] { return part("detail")->mapToScene({}).x(); };
    const auto drag = [&](int from, int to) {
        QTest::mousePress(&window, Qt::LeftButton, {}, {from, 300});
        QTest::mouseMove(&window, {(from + to) / 2, 300});
        QTest::mouseMove(&window, {to, 300});
        QTest::mouseRelease(&window, Qt::LeftButton, {}, {to, 300});
        settle();
        return end();
    };
    EXPECT_EQ(drag(198, 500), 320) << "the largest width";
    EXPECT_EQ(drag(322, 260), 260);
    EXPECT_EQ(drag(258, 100), 200) << "still there";
    EXPECT_EQ(drag(200, 99), 0) << "gone";
    EXPECT_EQ(drag(4, 220), 220);
    QTest::mouseMove(&window, {220, 200});
    QTest::mouseMove(&window, {222, 200});
    settle();
    EXPECT_EQ(end(), 220) << "a pointer that holds nothing";
}

TEST_F(ControlsViewTest, WithNoTabHighlightedTheKeysOfTheSidebarChooseTheFirst) {
    on.userDefaults.setInteger("selectedSettingsTab", 99);
    for (const Qt::Key pressed : {Qt::Key_Down, Qt::Key_Up}) {
        open(99);
        part("sidebar")->forceActiveFocus();
        key(pressed);
        EXPECT_TRUE(part("tab4")->property("current").toBool());
    }
}

TEST_F(ControlsViewTest, APressOnTheSidebarGivesTheKeyboardToTheTabAndItsKeysKeepIt) {
    open(0);
    const auto isInTab = [] { return part("detail")->property("activeFocus").toBool(); };
    EXPECT_TRUE(isInTab()) << "when the window opens";
    part("sidebar")->forceActiveFocus();
    ASSERT_FALSE(isInTab());
    click("tab0");
    EXPECT_TRUE(isInTab()) << "the tab on show";
    part("sidebar")->forceActiveFocus();
    click("tab7");
    EXPECT_TRUE(isInTab()) << "another tab";
    part("sidebar")->forceActiveFocus();
    key(Qt::Key_Up);
    EXPECT_FALSE(isInTab());
    state().columnVisibility.set(ColumnVisibility::detailOnly);
    state().selectedTab.set(3);
    settle();
    EXPECT_TRUE(isInTab()) << "without a sidebar";
}

} // namespace
} // namespace velloway::test
