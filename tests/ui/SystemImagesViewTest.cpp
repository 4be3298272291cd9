#include "bridge/SymbolProvider.h"
#include "bridge/Views.h"
#include "fakes/FakeSystemImages.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QIcon>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickImageProvider>
#include <QQuickItem>

#include <memory>

namespace velloway::test {
namespace {

using testing::ElementsAre;

constexpr int ready = 1;

/// The views' images, over a system that has images of its own or over none.
class SystemImagesViewTest : public testing::Test {
protected:
    void prepare(std::shared_ptr<const SystemImages> images) { prepareEngine(engine, std::move(images)); }

    QImage symbol(const char* id) {
        QSize size;
        const QImage image = provider("symbol").requestImage(id, &size, {20, 20});
        EXPECT_EQ(size, QSize(20, 20));
        return image;
    }
    QImage icon() {
        QSize size;
        return provider("application-icon").requestPixmap({}, &size, {64, 64}).toImage();
    }
    std::unique_ptr<QQuickItem> make(const char* text) {
        QQmlComponent component(&engine);
        component.setData(text, QUrl());
        std::unique_ptr<QQuickItem> item(qobject_cast<QQuickItem*>(component.create()));
        EXPECT_TRUE(item) << component.errorString().toStdString();
        return item;
    }

    QQmlEngine engine;
    std::shared_ptr<FakeSystemImages> system = std::make_shared<FakeSystemImages>();

private:
    QQuickImageProvider& provider(const char* name) {
        return dynamic_cast<QQuickImageProvider&>(*engine.imageProvider(name));
    }
};

/// The stored value of a pixel, as red, green, blue and alpha.
std::array<int, 4> stored(const QImage& image, int x, int y) {
    const QRgb value = reinterpret_cast<const QRgb*>(image.constScanLine(y))[x];
    return {qRed(value), qGreen(value), qBlue(value), qAlpha(value)};
}

TEST_F(SystemImagesViewTest, TheSystemsSymbolIsShownPixelByPixel) {
    prepare(system);
    const QImage image = symbol("phone.fill/80ff8000");
    ASSERT_EQ(image.format(), QImage::Format_ARGB32_Premultiplied);
    ASSERT_EQ(image.size(), QSize(20, 20));
    EXPECT_EQ(stored(image, 0, 0), (std::array<int, 4>{10, 20, 30, 40}));
    EXPECT_EQ(stored(image, 19, 19), (std::array<int, 4>{10, 20, 30, 40}));
}

TEST_F(SystemImagesViewTest, ASymbolThatTheSystemDoesNotKnowIsDrawnFromOurOwnSet) {
    system->hasSymbols = false;
    prepare(system);
    const QImage image = symbol("circle.fill/ff8000");
    EXPECT_THAT(system->asked(), testing::SizeIs(1));
    EXPECT_EQ(image, drawSymbol("circle.fill", QColor("#ff8000"), {20, 20}));
    EXPECT_EQ(image.pixelColor(10, 10), QColor("#ff8000")) << "it is not empty";
}

TEST_F(SystemImagesViewTest, WithoutASystemThatHasImagesAllAreOurOwn) {
    prepare(nullptr);
    EXPECT_EQ(symbol("clock/ff8000"), drawSymbol("clock", QColor("#ff8000"), {20, 20}));
    EXPECT_EQ(icon(), QIcon(":/icon/velloway.svg").pixmap(64, 64).toImage());
}

TEST_F(SystemImagesViewTest, TheIconIsThatOfTheSystemOrElseOurOwn) {
    prepare(system);
    EXPECT_EQ(stored(icon().convertToFormat(QImage::Format_ARGB32_Premultiplied), 63, 63),
              (std::array<int, 4>{10, 20, 30, 40}));
    system->hasIcon = false;
    const QImage own = icon();
    EXPECT_EQ(own, QIcon(":/icon/velloway.svg").pixmap(64, 64).toImage());
    EXPECT_EQ(own.pixelColor(32, 32).alpha(), 255) << "it is not empty";
    EXPECT_THAT(system->asked(), ElementsAre("icon 64x64", "icon 64x64"));
}

TEST_F(SystemImagesViewTest, AViewAsksByNameForItsSizeInItsColour) {
    prepare(system);
    const auto item =
        make("import Velloway\nSymbol { name: 'arrow.up.circle.fill'; size: 19.5; tint: '#80ff0000' }");
    EXPECT_EQ(item->property("status").toInt(), ready);
    ASSERT_THAT(system->asked(), testing::SizeIs(1));
    EXPECT_THAT(system->asked().front(), testing::StartsWith("arrow.up.circle.fill 20x20 1 0 0 0.50"));
}

TEST_F(SystemImagesViewTest, AViewAsksForTheIconOnTheMainThread) {
    prepare(system);
    const auto item =
        make("import QtQuick\nImage { sourceSize: Qt.size(128, 128); source: 'image://application-icon/' }");
    EXPECT_EQ(item->property("status").toInt(), ready);
    EXPECT_EQ(system->iconThread, std::this_thread::get_id());
    EXPECT_THAT(system->asked(), ElementsAre("icon 128x128"));
}

} // namespace
} // namespace velloway::test
