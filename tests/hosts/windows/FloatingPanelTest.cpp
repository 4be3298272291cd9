#include "hosts/linux/windows/FloatingPanel.h"
#include "desktop/WaitFor.h"
#include "hosts/linux/windows/RoundedRegion.h"
#include "hosts/windows/XClient.h"
#include "tabs/Style.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QFontInfo>
#include <QLabel>
#include <QPainter>
#include <QTest>
#include <QVBoxLayout>

#include <memory>

namespace velloway::test {
namespace {

class Panel : public FloatingPanel {
public:
    Panel() {
        auto* body = new QWidget(this);
        body->setFixedHeight(40);
        content()->addWidget(body);
        close = qobject_cast<QAbstractButton*>(makeCloseButton("Close it"));
        close->setParent(this);
        close->move(300, 20);
        fitHeight();
    }
    using FloatingPanel::content;
    using FloatingPanel::nativeWindow;

    QAbstractButton* close = nullptr;
    int closings = 0;
    int clicks = 0;

protected:
    void closeRequested() override { ++closings; }
    void backgroundClicked() override { ++clicks; }
};

QColor named(const PaletteColor& color, bool isDark) {
    return QColor::fromRgba(isDark ? color.dark : color.light);
}

TEST(FloatingPanelLooks, WithoutACompositorItIsAsLargeAsItLooks) {
    Panel panel;
    EXPECT_EQ(panel.size(), QSize(350, 14 + 40 + 14));
    EXPECT_EQ(panel.content()->contentsMargins(), QMargins(14, 14, 14, 14));
    EXPECT_EQ(panel.content()->spacing(), 4);
    panel.placePanelAt({100, 200});
    EXPECT_EQ(panel.panelGeometry(), QRect(100, 200, 350, 68));
    EXPECT_EQ(panel.geometry(), panel.panelGeometry());
    EXPECT_FALSE(panel.testAttribute(Qt::WA_TranslucentBackground));
    EXPECT_EQ(panel.windowFlags() &
                  (Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::NoDropShadowWindowHint),
              Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::NoDropShadowWindowHint);
    EXPECT_FALSE(panel.wasMovedByUser());
}

TEST(FloatingPanelLooks, WithoutACompositorAMaskRoundsTheCornersOfAnOpaqueCard) {
    Panel panel;
    panel.show();
    EXPECT_EQ(panel.mask(), roundedRegion(panel.size(), 14));
    const QImage image = panel.grab().toImage();
    QColor ground = named(paletteColor("panel"), false);
    ground.setAlpha(255);
    EXPECT_EQ(image.pixelColor(40, 40), ground);
    // The line around it.
    EXPECT_NE(image.pixelColor(175, 0), ground);
    EXPECT_EQ(image.pixelColor(175, 1), ground);
    EXPECT_EQ(image.pixelColor(175, 0), image.pixelColor(0, 34));
}

TEST(FloatingPanelLooks, WithACompositorItHasAShadowAround) {
    const CompositingManager manager;
    Panel panel;
    EXPECT_EQ(panel.size(), QSize(350 + 28, 68 + 28));
    EXPECT_EQ(panel.content()->contentsMargins(), QMargins(28, 28, 28, 28));
    panel.placePanelAt({100, 200});
    EXPECT_EQ(panel.panelGeometry(), QRect(100, 200, 350, 68));
    EXPECT_EQ(panel.pos(), QPoint(86, 186));
    EXPECT_TRUE(panel.testAttribute(Qt::WA_TranslucentBackground));
    panel.show();
    EXPECT_TRUE(panel.mask().isEmpty());

    QImage image(panel.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    panel.render(&image, {}, {}, QWidget::DrawChildren);
    const auto alphaAt = [&](int x, int y) { return image.pixelColor(x, y).alpha(); };
    const QColor ground = named(paletteColor("panel"), false);
    EXPECT_EQ(alphaAt(40, 40), ground.alpha());
    EXPECT_NEAR(image.pixelColor(40, 40).red(), ground.red(), 1);
    // Darker the nearer, and lower than it is high.
    EXPECT_EQ(alphaAt(0, 0), 0);
    EXPECT_EQ(alphaAt(189, 0), 0);
    EXPECT_GT(alphaAt(189, 12), alphaAt(189, 8));
    EXPECT_GT(alphaAt(189, 84), alphaAt(189, 11));
    EXPECT_GT(alphaAt(189, 84), alphaAt(189, 88));
    EXPECT_LT(alphaAt(189, 84), 80);
    EXPECT_EQ(image.pixelColor(189, 84).red(), 0);
    QImage expected(panel.size(), QImage::Format_ARGB32_Premultiplied);
    expected.fill(Qt::transparent);
    QPainter painter(&expected);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    // From 14 pixels away to 1, each a little darker, three pixels lower on the upper side.
    for (int reach = 14; reach > 0; --reach) {
        const double nearness = 1.0 - reach / 15.0;
        painter.setBrush(QColor(0, 0, 0, int(9 * nearness * nearness)));
        painter.drawRoundedRect(QRect(14 - reach, 17 - reach, 350 + 2 * reach, 65 + 2 * reach), 14 + reach,
                                14 + reach);
    }
    EXPECT_EQ(image.copy(0, 0, 378, 14), expected.copy(0, 0, 378, 14));
    EXPECT_EQ(image.copy(0, 82, 378, 14), expected.copy(0, 82, 378, 14));
    // The corner of the card is round.
    EXPECT_LT(alphaAt(15, 15), 100);
    EXPECT_GT(alphaAt(20, 20), 200);
    EXPECT_NE(image.pixelColor(189, 14), image.pixelColor(189, 16));
}

TEST(FloatingPanelLooks, ItsColoursAreThoseOfTheViewsLightAndDark) {
    const QPalette before = QApplication::palette();
    Panel panel;
    for (const int lightness : {255, 128, 127, 0}) {
        QPalette desktop = before;
        desktop.setColor(QPalette::Window, QColor(lightness, lightness, lightness));
        QApplication::setPalette(desktop);
        processPending();
        const bool isDark = lightness < 128;
        const QColor accent = named(paletteColor("blue"), isDark);
        const std::pair<QPalette::ColorRole, QColor> expected[] = {
            {QPalette::Window, named(paletteColor("panel"), isDark)},
            {QPalette::Mid, named(paletteColor("outline"), isDark)},
            {QPalette::WindowText, named(paletteColor("primary"), isDark)},
            {QPalette::Text, named(paletteColor("primary"), isDark)},
            {QPalette::PlaceholderText, named(paletteColor("secondary"), isDark)},
            {QPalette::Base, named(paletteColor("button"), isDark)},
            {QPalette::Highlight, accent},
            {QPalette::HighlightedText, named(paletteColor("white"), isDark)},
            {QPalette::Dark, accent.darker(120)},
        };
        for (const auto& [role, color] : expected) {
            EXPECT_EQ(panel.palette().color(role), color) << lightness << ' ' << int(role);
        }
    }
    QApplication::setPalette(before);
}

TEST(FloatingPanelLooks, ItsFontIsThatOfTheDesktopWithEmojiBehindIt) {
    const Panel panel;
    EXPECT_EQ(panel.font().pixelSize(), 13);
    EXPECT_EQ(panel.font().families(),
              (QStringList{QFontInfo(QApplication::font()).family(), "Noto Color Emoji"}));
}

TEST(FloatingPanelLooks, TheCloseButtonIsACrossInADiscThatDarkensInUse) {
    Panel panel;
    EXPECT_EQ(panel.close->size(), QSize(20, 20));
    EXPECT_EQ(panel.close->accessibleName(), "Close it");
    EXPECT_EQ(panel.close->toolTip(), "Close it");
    EXPECT_EQ(panel.close->cursor().shape(), Qt::ArrowCursor);
    EXPECT_EQ(panel.close->focusPolicy(), Qt::TabFocus);
    EXPECT_TRUE(panel.close->testAttribute(Qt::WA_Hover));

    const auto drawn = [&](float strength) {
        QImage image(20, 20, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor disc = named(paletteColor("primary"), false);
        disc.setAlphaF(strength);
        painter.setPen(Qt::NoPen);
        painter.setBrush(disc);
        painter.drawEllipse(QRectF(1, 1, 18, 18));
        painter.setPen(QPen(named(paletteColor("secondary"), false), 1.5, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(QPointF(7, 7), QPointF(13, 13));
        painter.drawLine(QPointF(13, 7), QPointF(7, 13));
        return image;
    };
    const auto look = [&] {
        QImage image(20, 20, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        panel.close->render(&image, {}, {}, {});
        return image;
    };
    QCursor::setPos(1, 1);
    panel.move(300, 300);
    panel.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&panel));
    panel.close->clearFocus();
    EXPECT_TRUE(waitFor([&] { return look() == drawn(0.06f); }));
    QCursor::setPos(panel.close->mapToGlobal(QPoint(10, 10)));
    EXPECT_TRUE(waitFor([&] { return look() == drawn(0.14f); }));
    panel.close->setDown(true);
    EXPECT_EQ(look(), drawn(0.22f));
    panel.close->setDown(false);
    QCursor::setPos(1, 1);
    EXPECT_TRUE(waitFor([&] { return look() == drawn(0.06f); }));
    panel.activateWindow();
    panel.close->setFocus();
    ASSERT_TRUE(waitFor([&] { return panel.close->hasFocus(); }));
    EXPECT_EQ(look(), drawn(0.14f));
}

TEST(FloatingPanelUse, EscapeTheButtonAndTheManagerAskForTheEndAndOtherKeysDoNot) {
    Panel panel;
    panel.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&panel));
    QTest::keyClick(&panel, Qt::Key_Return);
    EXPECT_EQ(panel.closings, 0);
    QTest::keyClick(&panel, Qt::Key_Escape);
    EXPECT_EQ(panel.closings, 1);
    QTest::mouseClick(panel.close, Qt::LeftButton);
    EXPECT_EQ(panel.closings, 2);
    EXPECT_EQ(panel.clicks, 0);

    XClient manager;
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = XClient::idOf(panel.nativeWindow());
    message.type = manager.atom("WM_PROTOCOLS");
    message.data.data32[0] = manager.atom("WM_DELETE_WINDOW");
    xcb_send_event(manager.get(), 0, message.window, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&message));
    manager.sync();
    EXPECT_TRUE(waitFor([&] { return panel.closings == 3; }));
    EXPECT_TRUE(panel.isVisible());
    panel.close->window()->QWidget::close();
    EXPECT_FALSE(panel.isVisible());
    EXPECT_EQ(panel.closings, 3);
}

class FloatingPanelDrag : public testing::Test {
protected:
    FloatingPanelDrag() {
        // No window manager looks after it, so that it moves itself.
        panel_.nativeWindow().setFlag(Qt::BypassWindowManagerHint);
        panel_.placePanelAt({300, 200});
        panel_.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&panel_));
        reach_ = QApplication::startDragDistance();
    }
    void press(QPoint at, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mousePress(&panel_, button, {}, at);
    }
    void release(QPoint at, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseRelease(&panel_, button, {}, at);
    }

    Panel panel_;
    int reach_ = 0;
};

TEST_F(FloatingPanelDrag, AClickThatSlipsALittleIsAClick) {
    press({20, 20});
    QTest::mouseMove(&panel_, {20 + reach_ - 1, 20});
    release({20 + reach_ - 1, 20});
    EXPECT_EQ(panel_.clicks, 1);
    EXPECT_FALSE(panel_.wasMovedByUser());
    EXPECT_EQ(panel_.pos(), QPoint(300, 200));
}

TEST_F(FloatingPanelDrag, FromItsDistanceOnItFollowsThePointer) {
    press({20, 20});
    QTest::mouseMove(&panel_, {20 + reach_, 20});
    EXPECT_TRUE(panel_.wasMovedByUser());
    EXPECT_EQ(panel_.pos(), QPoint(300 + reach_, 200));
    // It has begun: a small way counts as well.
    QTest::mouseMove(&panel_, {21, 23});
    EXPECT_EQ(panel_.pos(), QPoint(301 + reach_, 203));
    release({21, 23});
    EXPECT_EQ(panel_.clicks, 0);
    QTest::mouseMove(&panel_, {60, 60});
    EXPECT_EQ(panel_.pos(), QPoint(301 + reach_, 203));
}

TEST_F(FloatingPanelDrag, OtherButtonsNeitherDragNorClick) {
    press({20, 20}, Qt::RightButton);
    QTest::mouseMove(&panel_, {80, 20});
    release({80, 20}, Qt::RightButton);
    EXPECT_EQ(panel_.clicks, 0);
    EXPECT_FALSE(panel_.wasMovedByUser());
    EXPECT_EQ(panel_.pos(), QPoint(300, 200));
    release({20, 20});
    EXPECT_EQ(panel_.clicks, 0);
}

} // namespace
} // namespace velloway::test
