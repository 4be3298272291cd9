#include "hosts/mac/QtSurface.h"
#include "fakes/FakeSystemImages.h"
#include "shell/IncomingCallBanner.h"
#include "ui/ViewHarness.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QEventLoop>
#include <QPointer>
#include <QQmlEngine>

#include <algorithm>
#include <memory>

namespace velloway::test {
namespace {

using testing::IsEmpty;

/// The surfaces that macOS puts into its own windows. Here nothing holds their views, so that each is a window.
/// A test fails when a view complains while it runs.
class QtSurfaceTest : public testing::Test {
protected:
    using Look = MacWindows::Look;

    QtSurfaceTest() {
        complaints().clear();
        previous_ =
            qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& message) {
                if (type != QtDebugMsg && type != QtInfoMsg) {
                    complaints().push_back(message.toStdString());
                }
            });
    }
    ~QtSurfaceTest() override {
        qInstallMessageHandler(previous_);
        EXPECT_THAT(complaints(), IsEmpty());
    }

    std::shared_ptr<WindowContent> ringing(
        std::string number, std::function<void()> onAnswer = [] {}) {
        return std::make_shared<IncomingCallBanner>(
            std::make_shared<const IncomingCallInfo>(IncomingCallInfo{std::move(number), std::nullopt}),
            std::move(onAnswer), [this] { ++hangups; });
    }

    static ContentView* viewOf(ContentSurface& surface) {
        const auto id = reinterpret_cast<WId>(surface.nativeView());
        for (QWindow* window : QGuiApplication::topLevelWindows()) {
            if (window->handle() && window->winId() == id) {
                return qobject_cast<ContentView*>(window);
            }
        }
        return nullptr;
    }
    static ContentView& show(ContentSurface& surface) {
        surface.setShown(true);
        ContentView* view = viewOf(surface);
        if (!view) {
            throw std::runtime_error("the surface has no view");
        }
        waitForFrame(*view, [](auto condition) { return waitFor(condition); });
        return *view;
    }
    /// As the program drops them: in the handling of an event.
    static void drop(std::unique_ptr<ContentSurface>& surface) {
        QTimer::singleShot(0, qApp, [&surface] { surface.reset(); });
        waitFor([&] { return surface == nullptr; });
    }
    static QPoint middleOf(const char* name, ContentView& view) {
        QQuickItem* item = ViewHarness::part(name, &view);
        return item->mapToScene(QPointF(item->width() / 2, item->height() / 2)).toPoint();
    }

    FakePlatform on;
    int hangups = 0;
    std::shared_ptr<FakeSystemImages> images = std::make_shared<FakeSystemImages>();
    QtSurfaces surfaces{images};

private:
    static std::vector<std::string>& complaints() {
        static std::vector<std::string> heard;
        return heard;
    }
    QtMessageHandler previous_;
};

TEST_F(QtSurfaceTest, APressAtTheBackgroundIsTold) {
    const auto surface = surfaces.make(ringing("123"), Look::translucent);
    int presses = 0;
    surface->setBackgroundPressed([&] { ++presses; });
    ContentView& view = show(*surface);
    QTest::mousePress(&view, Qt::LeftButton, {}, {200, 6});
    EXPECT_EQ(presses, 1) << "at the press, not at the release";
    QTest::mouseRelease(&view, Qt::LeftButton, {}, {200, 6});
    QTest::mouseClick(&view, Qt::RightButton, {}, {200, 6});
    EXPECT_EQ(presses, 1);
    QTest::mouseClick(&view, Qt::LeftButton, {}, middleOf("firstLine", view));
    EXPECT_EQ(presses, 2) << "a text is no control";
}

TEST_F(QtSurfaceTest, APressOnAButtonActsOnTheButtonAlone) {
    int answers = 0;
    int presses = 0;
    const auto surface = surfaces.make(ringing("123", [&] { ++answers; }), Look::translucent);
    surface->setBackgroundPressed([&] { ++presses; });
    ContentView& view = show(*surface);
    QTest::mouseClick(&view, Qt::LeftButton, {}, middleOf("right", view));
    EXPECT_EQ(answers, 1);
    QTest::mouseClick(&view, Qt::LeftButton, {}, middleOf("left", view));
    EXPECT_EQ(hangups, 1);
    EXPECT_EQ(presses, 0);
}

TEST_F(QtSurfaceTest, APressWithNobodyToTellDoesNothing) {
    const auto surface = surfaces.make(ringing("123"), Look::translucent);
    ContentView& view = show(*surface);
    QTest::mouseClick(&view, Qt::LeftButton, {}, {200, 6});
    EXPECT_EQ(hangups, 0);
}

TEST_F(QtSurfaceTest, IsDrawnOnlyWhileItIsShown) {
    const auto surface = surfaces.make(ringing("123"), Look::translucent);
    ASSERT_NE(viewOf(*surface), nullptr);
    EXPECT_FALSE(viewOf(*surface)->isVisible());
    ContentView& view = show(*surface);
    EXPECT_TRUE(view.isVisible());
    surface->setShown(false);
    EXPECT_FALSE(view.isVisible());
    EXPECT_TRUE(waitFor([&] { return !view.isExposed(); }));
    show(*surface);
    EXPECT_EQ(&view, viewOf(*surface));
}

TEST_F(QtSurfaceTest, ShowsTheSymbolsOfTheSystem) {
    const auto surface = surfaces.make(ringing("123"), Look::translucent);
    show(*surface);
    EXPECT_TRUE(waitFor([&] {
        const auto asked = images->asked();
        return std::any_of(asked.begin(), asked.end(),
                           [](const std::string& symbol) { return symbol.starts_with("phone.fill "); });
    }));
}

TEST_F(QtSurfaceTest, OtherContentComesInTheSameView) {
    const auto surface = surfaces.make(ringing("123"), Look::translucent);
    ContentView& view = show(*surface);
    EXPECT_EQ(ViewHarness::text("firstLine", &view), "123");
    int answers = 0;
    surface->setContent(ringing("456", [&] { ++answers; }));
    processPending();
    EXPECT_EQ(viewOf(*surface), &view);
    EXPECT_EQ(ViewHarness::text("firstLine", &view), "456");
    QTest::mouseClick(&view, Qt::LeftButton, {}, middleOf("right", view));
    EXPECT_EQ(answers, 1);
}

TEST_F(QtSurfaceTest, CanGoInThePressOfItsOwnButton) {
    std::unique_ptr<ContentSurface> surface;
    QPointer<ContentView> view;
    bool isHiddenAtOnce = false;
    surface = surfaces.make(ringing("123",
                                    [&] {
                                        surface.reset();
                                        isHiddenAtOnce = view && !view->isVisible();
                                    }),
                            Look::translucent);
    view = &show(*surface);
    QTest::mouseClick(view, Qt::LeftButton, {}, middleOf("right", *view));
    EXPECT_EQ(surface, nullptr);
    EXPECT_TRUE(isHiddenAtOnce);
    EXPECT_TRUE(waitFor([&] { return view.isNull(); }));
}

TEST_F(QtSurfaceTest, TheEngineOutlivesAViewThatANestedEventLoopHoldsBack) {
    std::unique_ptr<ContentSurface> surface;
    QPointer<ContentView> view;
    QPointer<QQmlEngine> engine;
    bool hasNested = false;
    surface = surfaces.make(ringing("123",
                                    [&] {
                                        surface.reset();
                                        QEventLoop nested;
                                        QTimer::singleShot(0, &nested, &QEventLoop::quit);
                                        nested.exec();
                                        hasNested = true;
                                        EXPECT_FALSE(view.isNull());
                                        EXPECT_FALSE(engine.isNull());
                                    }),
                            Look::translucent);
    view = &show(*surface);
    engine = view->engine();
    QTest::mouseClick(view, Qt::LeftButton, {}, middleOf("right", *view));
    EXPECT_TRUE(hasNested);
    EXPECT_TRUE(waitFor([&] { return view.isNull() && engine.isNull(); }));
}

TEST_F(QtSurfaceTest, TheEngineComesWithTheFirstSurfaceAndGoesWithTheLast) {
    auto first = surfaces.make(ringing("123"), Look::translucent);
    auto second = surfaces.make(ringing("456"), Look::opaque);
    const QPointer<QQmlEngine> engine = show(*first).engine();
    EXPECT_EQ(show(*second).engine(), engine);
    const QPointer<ContentView> view = viewOf(*first);
    drop(first);
    ASSERT_TRUE(waitFor([&] { return view.isNull(); }));
    EXPECT_FALSE(engine.isNull());
    EXPECT_EQ(ViewHarness::text("firstLine", viewOf(*second)), "456");
    drop(second);
    EXPECT_TRUE(waitFor([&] { return engine.isNull(); }));

    const auto third = surfaces.make(ringing("789"), Look::translucent);
    EXPECT_EQ(ViewHarness::text("firstLine", &show(*third)), "789");
}

TEST_F(QtSurfaceTest, NothingIsLeftWhenTheMakerGoes) {
    QPointer<ContentView> view;
    {
        QtSurfaces maker{images};
        auto surface = maker.make(ringing("123"), Look::translucent);
        view = &show(*surface);
        surface.reset();
    }
    EXPECT_TRUE(view.isNull());
}

TEST_F(QtSurfaceTest, TheTextIsInTheFontOfTheSystem) {
    const QFont before = QGuiApplication::font();
    QGuiApplication::setFont(QFont(QStringLiteral("Font of the system")));
    const auto surface = surfaces.make(ringing("123"), Look::translucent);
    show(*surface);
    EXPECT_EQ(QGuiApplication::font().families(), QStringList{QStringLiteral("Font of the system")});
    QGuiApplication::setFont(before);
}

TEST_F(QtSurfaceTest, APanelIsSeeThroughAtItsCornersAndTakesNoKeys) {
    const auto surface = surfaces.make(ringing("123"), Look::translucent);
    ContentView& view = show(*surface);
    EXPECT_EQ(view.color(), QColor(Qt::transparent));
    EXPECT_GT(view.requestedFormat().alphaBufferSize(), 0);
    EXPECT_TRUE(view.rootObject()->property("translucent").toBool());
    EXPECT_TRUE(view.flags() & Qt::WindowDoesNotAcceptFocus);
    view.resize(350, 80);
    ASSERT_TRUE(waitFor([&] { return view.size() == QSize(350, 80); }));
    const QImage picture = view.grabWindow();
    EXPECT_EQ(qAlpha(picture.pixel(0, 0)), 0);
    EXPECT_GT(qAlpha(picture.pixel(175, 40)), 200);
}

TEST_F(QtSurfaceTest, TheMainWindowIsOpaqueTakesKeysAndHearsWhenItIsShownAgain) {
    Program program(on.platform(), [] {});
    program.delegate().applicationDidFinishLaunching();
    program.delegate().showSettings(0);
    on.drain();
    auto surface = surfaces.make(on.windows.mainWindow->content, Look::opaque);
    ASSERT_NE(surface->nativeView(), nullptr);
    viewOf(*surface)->resize(850, 550);
    ContentView& view = show(*surface);
    EXPECT_FALSE(view.flags() & Qt::WindowDoesNotAcceptFocus);
    EXPECT_EQ(view.color().alpha(), 255);
    EXPECT_TRUE(waitFor([&] { return ViewHarness::shows("sidebar", &view); }));
    const int checks = on.accessibility.checks;
    surface->setShown(false);
    on.drain();
    EXPECT_EQ(on.accessibility.checks, checks);
    show(*surface);
    on.drain();
    EXPECT_GT(on.accessibility.checks, checks);
    surface.reset();
    on.windows.mainWindow->content.reset();
}

} // namespace
} // namespace velloway::test
