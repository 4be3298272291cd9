#include "desktop/WaitFor.h"
#include "hosts/linux/desktop/LinuxStatusItem.h"
#include "hosts/linux/desktop/TraylessWindow.h"
#include "tabs/Style.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QWindow>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

const std::vector<std::string> entries{"Call…", "Tom & Jerry…", "Settings…", "Quit"};
const std::vector<std::string> keys{"c", "t", ",", "q"};

QColor present(const PaletteColor& color, bool isDark) {
    return QColor::fromRgba(isDark ? color.dark : color.light);
}

double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& one, const QColor& other) {
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

class TraylessMenuTest : public testing::Test {
protected:
    TraylessMenuTest() {
        std::vector<MenuItem> menu{{.title = "Velloway", .isEnabled = false},
                                   {.isSeparator = true},
                                   {.title = "Server: starting…", .tag = 1, .isEnabled = false},
                                   {.isSeparator = true}};
        for (std::size_t i = 0; i < entries.size(); ++i) {
            menu.push_back({.title = entries[i],
                            .keyEquivalent = keys[i],
                            .action = MenuItem::Action::call,
                            .onChosen = [this, i] { chosen.push_back(entries[i]); }});
        }
        statusItem.setMenu(menu);
    }
    ~TraylessMenuTest() override { QApplication::setPalette(before_); }

    /// Until it takes keys.
    void show() {
        window.show();
        window.activateWindow();
        ASSERT_TRUE(waitFor([&] {
            return window.windowHandle()->isExposed() && window.isActiveWindow() &&
                   QApplication::focusWindow() == window.windowHandle();
        }));
    }

    template <class Part> std::vector<Part*> parts() {
        std::vector<Part*> found;
        for (Part* part : window.findChildren<Part*>()) {
            if (part->isVisible()) {
                found.push_back(part);
            }
        }
        std::sort(found.begin(), found.end(), [this](Part* a, Part* b) {
            return a->mapTo(&window, QPoint()).y() < b->mapTo(&window, QPoint()).y();
        });
        return found;
    }
    std::vector<QPushButton*> buttons() { return parts<QPushButton>(); }
    QLabel* label(const char* name) {
        for (QLabel* part : parts<QLabel>()) {
            if (part->objectName() == QLatin1String(name)) {
                return part;
            }
        }
        return nullptr;
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(window.windowHandle(), key, modifiers);
    }
    /// The row that the keyboard is on.
    std::ptrdiff_t focused() {
        const auto all = buttons();
        return std::find(all.begin(), all.end(), QApplication::focusWidget()) - all.begin();
    }
    /// Whether a stroke of about this colour is drawn where the part stands.
    bool shows(const QImage& picture, const QWidget& part, const QColor& color) {
        const QRect place(part.mapTo(&window, QPoint()), part.size());
        const auto isNear = [](int one, int other) { return std::abs(one - other) <= 24; };
        for (int y = place.top(); y <= place.bottom(); ++y) {
            for (int x = place.left(); x <= place.right(); ++x) {
                const QColor pixel = picture.pixelColor(x, y);
                if (isNear(pixel.red(), color.red()) && isNear(pixel.green(), color.green()) &&
                    isNear(pixel.blue(), color.blue())) {
                    return true;
                }
            }
        }
        return false;
    }
    void useDark(bool isDark) {
        QPalette desktop;
        desktop.setColor(QPalette::Window, isDark ? QColor(40, 44, 52) : QColor(230, 220, 210));
        desktop.setColor(QPalette::WindowText, isDark ? Qt::yellow : Qt::darkGreen);
        QApplication::setPalette(desktop);
        processPending();
    }

    std::vector<std::string> chosen;
    LinuxStatusItem statusItem;
    TraylessWindow window{statusItem};

private:
    QPalette before_ = QApplication::palette();
};

TEST_F(TraylessMenuTest, ReturnEnterAndTheSpaceBarChooseTheEntryOfTheKeyboard) {
    show();
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        for (QPushButton* button : buttons()) {
            button->setFocus();
            press(key);
        }
        EXPECT_THAT(std::exchange(chosen, {}), ElementsAreArray(entries))
            << QKeySequence(key).toString().toStdString();
    }
}

TEST_F(TraylessMenuTest, TheKeysOfTheMenuChooseItsEntries) {
    show();
    std::vector<std::string> shown;
    for (const QLabel* part : parts<QLabel>()) {
        if (part->objectName() == QLatin1String("key")) {
            shown.push_back(part->text().toStdString());
        }
    }
    EXPECT_THAT(shown, ElementsAre("Ctrl+C", "Ctrl+T", "Ctrl+,", "Ctrl+Q"));
    std::size_t count = 0;
    for (const Qt::Key key : {Qt::Key_C, Qt::Key_T, Qt::Key_Comma, Qt::Key_Q}) {
        press(key, Qt::ControlModifier);
        ++count;
        EXPECT_TRUE(waitFor([&] { return chosen.size() == count; }));
    }
    EXPECT_THAT(chosen, ElementsAreArray(entries));
}

TEST_F(TraylessMenuTest, TheKeyboardGoesFromEntryToEntry) {
    show();
    for (const auto& [forward, back] :
         {std::pair(Qt::Key_Tab, Qt::Key_Backtab), std::pair(Qt::Key_Down, Qt::Key_Up)}) {
        buttons().front()->setFocus();
        for (std::ptrdiff_t row = 1; row < 4; ++row) {
            press(forward);
            EXPECT_EQ(focused(), row);
        }
        for (std::ptrdiff_t row = 2; row >= 0; --row) {
            press(back, back == Qt::Key_Backtab ? Qt::ShiftModifier : Qt::NoModifier);
            EXPECT_EQ(focused(), row);
        }
    }
}

TEST_F(TraylessMenuTest, HasTheColoursOfTheViewsInLightAndDark) {
    show();
    for (const bool isDark : {false, true}) {
        useDark(isDark);
        const QImage picture = window.grab().toImage();
        const QColor ground = picture.pixelColor(2, 2);
        EXPECT_EQ(ground, present(paletteColor("window"), isDark));
        const QColor primary = present(paletteColor("primary"), isDark);
        const QColor secondary = present(paletteColor("secondary"), isDark);
        for (const auto& [part, color] : {std::pair<QWidget*, QColor>(label("header"), primary),
                                          {buttons().front(), primary},
                                          {label("line"), secondary},
                                          {label("key"), secondary}}) {
            EXPECT_EQ(part->palette().color(part->foregroundRole()), color) << part->objectName().toStdString();
            EXPECT_TRUE(shows(picture, *part, color)) << part->objectName().toStdString();
            EXPECT_GE(contrast(color, ground), 4.5) << part->objectName().toStdString();
        }
    }
}

TEST_F(TraylessMenuTest, TheEntryOfTheKeyboardHasARingThatIsSeen) {
    show();
    for (const bool isDark : {false, true}) {
        useDark(isDark);
        const auto pixel = [&](std::size_t row, int y) {
            QPushButton* button = buttons().at(row);
            return window.grab().toImage().pixelColor(button->mapTo(&window, QPoint(button->width() / 2, y)));
        };
        const auto edge = [&](std::size_t row) { return pixel(row, 0); };
        // By the key: the toolkit's own mark shows only then.
        buttons().at(0)->setFocus();
        press(Qt::Key_Tab);
        const QColor ground = present(paletteColor("window"), isDark);
        EXPECT_EQ(edge(0), ground);
        for (int y = 1; y < buttons().at(1)->height() - 1; ++y) {
            EXPECT_EQ(pixel(1, y), ground) << "nothing else, in line " << y;
        }
        EXPECT_GE(contrast(edge(1), ground), 3) << (isDark ? "dark" : "light");
    }
}

TEST_F(TraylessMenuTest, AnotherThemeLeavesTheKeyboardWhereItIs) {
    show();
    buttons().at(2)->setFocus();
    useDark(true);
    processPending();
    EXPECT_EQ(focused(), 2);
    press(Qt::Key_Return);
    EXPECT_THAT(chosen, ElementsAre("Settings…"));
}

} // namespace
} // namespace velloway::test
