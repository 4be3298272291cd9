#include "hosts/linux/desktop/TraylessWindow.h"
#include "desktop/WaitFor.h"
#include "hosts/linux/desktop/LinuxStatusItem.h"
#include "hosts/windows/XClient.h"
#include "tabs/Style.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QTest>
#include <QWindow>

#include <memory>
#include <string>
#include <vector>

namespace velloway::test {
namespace {

using testing::ElementsAre;

const QPalette lightDesktop(QColor(0xef, 0xef, 0xef), QColor(0xef, 0xef, 0xef));
const QPalette darkDesktop(QColor(0x35, 0x35, 0x35), QColor(0x2a, 0x2a, 0x2a));

/// What shows where a colour lies over another.
QColor over(const QColor& one, const QColor& other) {
    const double share = one.alphaF();
    const auto mix = [share](int a, int b) { return qRound(share * a + (1 - share) * b); };
    return {mix(one.red(), other.red()), mix(one.green(), other.green()), mix(one.blue(), other.blue())};
}

bool isNear(const QColor& one, const QColor& other, int most = 1) {
    return std::abs(one.red() - other.red()) <= most && std::abs(one.green() - other.green()) <= most &&
           std::abs(one.blue() - other.blue()) <= most;
}

/// The colours of a window on a desktop of one kind.
struct Colors {
    explicit Colors(bool isDark)
        : window(of(paletteColor("window"), isDark)),
          text(of(paletteColor("primary"), isDark)),
          blue(of(paletteColor("blue"), isDark)),
          white(of(paletteColor("white"), isDark)),
          information(of(paletteColor("secondary"), isDark)),
          underPointer(over(of(paletteColor("hover"), isDark), window)),
          separator(over(of(paletteColor("separator"), isDark), window)) {}

    static QColor of(const PaletteColor& color, bool isDark) {
        return QColor::fromRgba(isDark ? color.dark : color.light);
    }

    QColor window;
    QColor text;
    QColor blue;
    QColor white;
    QColor information;
    QColor underPointer;
    QColor separator;
};

class TraylessWindowTest : public testing::Test {
protected:
    TraylessWindowTest() {
        QGuiApplication::setApplicationDisplayName("Velloway");
        QApplication::setPalette(lightDesktop);
        item.setMenu({
            {.title = "Header & more", .isEnabled = false},
            {.isSeparator = true},
            {.title = "Server: <b>starting</b>…", .tag = 1, .isEnabled = false},
            {.isSeparator = true},
            entry("Call & talk…", "c"),
            entry("Without a key", ""),
        });
        window = std::make_unique<TraylessWindow>(item);
        window->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    }
    ~TraylessWindowTest() override {
        window.reset();
        QApplication::setPalette(before_);
    }

    MenuItem entry(const std::string& title, const std::string& key) {
        return {.title = title,
                .keyEquivalent = key,
                .tag = 7,
                .action = MenuItem::Action::call,
                .onChosen = [this, title] { chosen.push_back(title); }};
    }
    /// Of those on the screen; others may still have to go.
    template <class Widget> QList<Widget*> shown(const QString& name = {}) const {
        QList<Widget*> found = window->findChildren<Widget*>(name);
        found.removeIf([](const Widget* each) { return !each->isVisible(); });
        return found;
    }
    QLabel* header() const { return shown<QLabel>("header").value(0); }
    QLabel* line() const { return shown<QLabel>("line").value(0); }
    QList<QPushButton*> buttons() const { return shown<QPushButton>(); }
    QRect placeOf(const QWidget* widget) const {
        return {widget->mapTo(window.get(), QPoint(0, 0)), widget->size()};
    }
    QImage picture() const { return window->grab().toImage().convertToFormat(QImage::Format_RGB32); }
    /// Whether anything in this place has the colour.
    bool hasColor(const QRect& place, const QColor& color, int most = 1) const {
        const QImage image = picture();
        for (int y = place.top(); y <= place.bottom(); ++y) {
            for (int x = place.left(); x <= place.right(); ++x) {
                if (isNear(image.pixelColor(x, y), color, most)) {
                    return true;
                }
            }
        }
        return false;
    }
    void expectColors(const Colors& colors) {
        EXPECT_TRUE(isNear(picture().pixelColor(1, 1), colors.window));
        EXPECT_TRUE(hasColor(placeOf(header()), colors.text));
        // Its strokes are too thin for a pixel in the colour alone.
        EXPECT_TRUE(hasColor({24, 16, 28, 28}, colors.blue, 24));
        EXPECT_TRUE(hasColor(placeOf(line()), colors.information));
        EXPECT_FALSE(hasColor(placeOf(line()), colors.text));
        EXPECT_TRUE(hasColor(placeOf(shown<QLabel>("key").value(0)), colors.information, 24));
        EXPECT_FALSE(hasColor(placeOf(shown<QLabel>("key").value(0)), colors.text, 24));
        EXPECT_TRUE(isNear(picture().pixelColor(placeOf(shown<QFrame>("separator").value(0)).center()),
                           colors.separator));
        QPushButton* const button = buttons().at(1);
        const QRect place = placeOf(button).adjusted(3, 3, -3, -3);
        EXPECT_TRUE(hasColor(place, colors.text));
        EXPECT_TRUE(isNear(picture().pixelColor(place.topLeft()), colors.window));
        // The first move only enters the window.
        QTest::mouseMove(window->windowHandle(), QPoint(1, 1));
        QTest::mouseMove(window->windowHandle(), place.center());
        EXPECT_TRUE(waitFor([&] { return isNear(picture().pixelColor(place.topLeft()), colors.underPointer); },
                            std::chrono::seconds(2)));
        button->setDown(true);
        EXPECT_TRUE(isNear(picture().pixelColor(place.topLeft()), colors.blue));
        EXPECT_TRUE(hasColor(place, colors.white));
        button->setDown(false);
        QTest::mouseMove(window->windowHandle(), QPoint(1, 1));
    }

    LinuxStatusItem item;
    std::unique_ptr<TraylessWindow> window;
    std::vector<std::string> chosen;

private:
    QPalette before_ = QApplication::palette();
};

TEST_F(TraylessWindowTest, ShowsTheMenuWithItsTextsAsTheyAre) {
    EXPECT_EQ(window->windowTitle(), "Velloway");
    ASSERT_NE(header(), nullptr);
    EXPECT_EQ(header()->text(), "Header & more");
    EXPECT_EQ(header()->textFormat(), Qt::PlainText);
    ASSERT_NE(line(), nullptr);
    EXPECT_EQ(line()->text(), "Server: <b>starting</b>…");
    EXPECT_EQ(line()->textFormat(), Qt::PlainText);
    EXPECT_TRUE(line()->textInteractionFlags() & Qt::TextSelectableByMouse);
    EXPECT_EQ(shown<QFrame>("separator").size(), 2);
    ASSERT_EQ(buttons().size(), 2);
    EXPECT_EQ(buttons()[0]->text(), "Call && talk…");
    EXPECT_EQ(buttons()[1]->text(), "Without a key");
    ASSERT_EQ(shown<QLabel>("key").size(), 1);
    EXPECT_EQ(shown<QLabel>("key")[0]->text(), "Ctrl+C");
}

TEST_F(TraylessWindowTest, HasItsRowsUnderEachOther) {
    EXPECT_EQ(window->width(), 300);
    EXPECT_EQ(window->minimumSize(), window->maximumSize());
    EXPECT_EQ(placeOf(shown<QLabel>("").value(0)), QRect(24, 16, 28, 28));
    EXPECT_EQ(placeOf(header()), QRect(62, 16, 214, 28));
    const QRect upper = placeOf(shown<QFrame>("separator").at(0));
    EXPECT_EQ(upper, QRect(14, 52, 272, 1));
    EXPECT_EQ(placeOf(line()).topLeft(), QPoint(14, 61));
    EXPECT_EQ(placeOf(line()).width(), 272);
    EXPECT_EQ(line()->contentsMargins(), QMargins(10, 2, 10, 2));
    const QRect lower = placeOf(shown<QFrame>("separator").at(1));
    EXPECT_EQ(lower, QRect(14, placeOf(line()).bottom() + 9, 272, 1));
    const QRect first = placeOf(buttons().at(0));
    EXPECT_EQ(first, QRect(14, lower.bottom() + 9, 272, first.height()));
    const QRect second = placeOf(buttons().at(1));
    EXPECT_EQ(second, QRect(14, first.bottom() + 3, 272, first.height()));
    EXPECT_EQ(window->height(), second.bottom() + 1 + 14);
    const QRect key = placeOf(shown<QLabel>("key").value(0));
    EXPECT_EQ(key.right(), first.right() - 10);
}

TEST_F(TraylessWindowTest, ALongLineTakesSeveral) {
    const int height = line()->height();
    item.setItemTitle(1, std::string(20, 'a') + " " + std::string(20, 'b') + " " + std::string(20, 'c'));
    EXPECT_TRUE(waitFor([&] { return line()->height() > height; }));
    EXPECT_EQ(window->width(), 300);
}

TEST_F(TraylessWindowTest, AClickChoosesTheItem) {
    EXPECT_EQ(buttons().at(0)->cursor().shape(), Qt::PointingHandCursor);
    for (QPushButton* button : buttons()) {
        QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, placeOf(button).center());
    }
    EXPECT_THAT(chosen, ElementsAre("Call & talk…", "Without a key"));
}

TEST_F(TraylessWindowTest, AClickOnAKeyIsOneOnItsButton) {
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {},
                      placeOf(shown<QLabel>("key").value(0)).center());
    EXPECT_THAT(chosen, ElementsAre("Call & talk…"));
}

TEST_F(TraylessWindowTest, AKeyPressesItsButtonToBeSeen) {
    const auto* shortcut = window->findChild<QShortcut*>();
    ASSERT_NE(shortcut, nullptr);
    EXPECT_EQ(shortcut->key(), QKeySequence("Ctrl+C"));
    QMetaObject::invokeMethod(const_cast<QShortcut*>(shortcut), "activated");
    EXPECT_TRUE(buttons().at(0)->isDown());
    EXPECT_TRUE(waitFor([&] { return !chosen.empty(); }));
    EXPECT_THAT(chosen, ElementsAre("Call & talk…"));
}

TEST_F(TraylessWindowTest, ANewTitleShowsInPlaceOfTheFormer) {
    item.setItemTitle(1, "Server: <i>listening</i>");
    EXPECT_EQ(line()->text(), "Server: <i>listening</i>");
    item.setItemTitle(7, "Ring & talk");
    EXPECT_EQ(buttons().at(0)->text(), "Ring && talk");
    EXPECT_EQ(buttons().at(1)->text(), "Without a key");
    EXPECT_EQ(header()->text(), "Header & more");
}

TEST_F(TraylessWindowTest, ANewMenuTakesThePlaceOfTheFormer) {
    item.setMenu({{.title = "New", .isEnabled = false}, {.isSeparator = true}, entry("Only", "o")});
    EXPECT_TRUE(waitFor([&] { return buttons().size() == 1 && buttons()[0]->text() == "Only"; }));
    EXPECT_EQ(header()->text(), "New");
    EXPECT_EQ(line(), nullptr);
    item.setItemTitle(7, "Other");
    EXPECT_EQ(buttons().at(0)->text(), "Other");
    processPending();
    EXPECT_EQ(window->findChildren<QPushButton*>().size(), 1) << "the former rows go";
    EXPECT_EQ(window->height(), placeOf(buttons().at(0)).bottom() + 1 + 14);
}

TEST_F(TraylessWindowTest, AnItemMayReplaceTheMenuItIsIn) {
    MenuItem replacing = entry("Replace", "");
    replacing.onChosen = [this] {
        item.setMenu({{.title = "New", .isEnabled = false}, entry("Only", "")});
        chosen.emplace_back("replaced");
    };
    item.setMenu({{.title = "Old", .isEnabled = false}, replacing});
    ASSERT_TRUE(waitFor([&] { return buttons().size() == 1; }));
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, placeOf(buttons().at(0)).center());
    EXPECT_THAT(chosen, ElementsAre("replaced"));
    EXPECT_TRUE(waitFor([&] { return buttons().size() == 1 && buttons()[0]->text() == "Only"; }));
}

TEST_F(TraylessWindowTest, FollowsTheColoursOfTheDesktop) {
    expectColors(Colors(false));
    QApplication::setPalette(darkDesktop);
    ASSERT_TRUE(waitFor([&] { return isNear(picture().pixelColor(1, 1), Colors(true).window); }));
    processPending();
    expectColors(Colors(true));
    EXPECT_EQ(buttons().size(), 2);
    QApplication::setPalette(lightDesktop);
    ASSERT_TRUE(waitFor([&] { return isNear(picture().pixelColor(1, 1), Colors(false).window); }));
    processPending();
    expectColors(Colors(false));
}

TEST_F(TraylessWindowTest, OtherChangesLeaveTheRowsAsTheyAre) {
    const QPushButton* const button = buttons().at(0);
    QEvent language(QEvent::LanguageChange);
    QApplication::sendEvent(window.get(), &language);
    EXPECT_EQ(buttons().at(0), button);
}

TEST_F(TraylessWindowTest, ComesForwardFromBehindAndFromTheTaskbar) {
    XClient client;
    const QRect place = window->geometry();
    const xcb_window_t above = client.makeWindow(place.x(), place.y(), 300, 300);
    client.show(above);
    window->setWindowState(Qt::WindowMinimized);
    client.takeMessages();
    window->bringForward();
    EXPECT_FALSE(window->isMinimized());
    EXPECT_TRUE(waitFor([&] { return client.topWindow() == XClient::idOf(*window->windowHandle()); }));
    bool isActivated = false;
    EXPECT_TRUE(waitFor([&] {
        for (const auto& message : client.takeMessages()) {
            isActivated = isActivated || message.type == "_NET_ACTIVE_WINDOW";
        }
        return isActivated;
    }));
    window->hide();
    window->bringForward();
    EXPECT_TRUE(window->isVisible());
}

} // namespace
} // namespace velloway::test
