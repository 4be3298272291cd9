#include "hosts/mac/MacSystemImages.h"
#include "hosts/mac/FakeMac.h"
#include "runtime/ObjectiveC.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <utility>
#include <vector>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Tint orange{.red = 1, .green = 0.5, .blue = 0, .alpha = 1};
constexpr std::array<int, 4> nothing{0, 0, 0, 0};

/// Red, green, blue and alpha, counted from the top left.
std::array<int, 4> pixelAt(const Bitmap& bitmap, int x, int y) {
    const std::uint8_t* pixel = bitmap.rgba.data() + 4 * (y * bitmap.size.width + x);
    return {pixel[0], pixel[1], pixel[2], pixel[3]};
}

/// Ends with the number of objects that it began with.
class MacSystemImagesTest : public testing::Test {
protected:
    MacSystemImagesTest() {
        resetFakeMac();
        // The fake application is made by the first who asks for it.
        aliveBefore = runtimeObjectsAlive();
    }
    ~MacSystemImagesTest() override {
        EXPECT_FALSE(hasFakeContext()) << "what this thread draws next would go into our bitmap";
        objc_autoreleasePoolPop(pool);
        EXPECT_EQ(runtimeObjectsAlive(), aliveBefore);
        resetFakeMac();
    }

    std::vector<std::string> calls() { return std::exchange(fakeMac.calls, {}); }

    int aliveBefore = 0;
    void* pool = objc_autoreleasePoolPush();
    MacSystemImages images;
};

TEST_F(MacSystemImagesTest, ASymbolIsDrawnByItsNameAndTintedInABitmapOfExactlyTheSize) {
    const auto symbol = images.symbol("phone.fill", {20, 20}, orange);
    EXPECT_THAT(calls(), ElementsAre("bitmap 20 20", "clear 0 0 20 20", "draw phone.fill 16 at 2 2 16 16",
                                     "fill what is there 0 0 20 20"));
    ASSERT_TRUE(symbol);
    EXPECT_EQ(symbol->size.width, 20);
    EXPECT_EQ(symbol->size.height, 20);
    EXPECT_EQ(symbol->rgba.size(), 20u * 20 * 4);
}

TEST_F(MacSystemImagesTest, PixelsComeRowByRowFromTheTopWithoutGapsAndPremultiplied) {
    fakeMac.symbolHeight = 0.5;
    const auto symbol = images.symbol("minus", {10, 10}, {.red = 1, .green = 0.5, .blue = 0, .alpha = 0.5});
    ASSERT_TRUE(symbol);
    ASSERT_EQ(symbol->rgba.size(), 10u * 10 * 4);
    // The symbol is 8 by 4 pixels, its lower half drawn half as densely.
    for (int y = 0; y < 10; ++y) {
        for (int x = 0; x < 10; ++x) {
            const bool isInside = x >= 1 && x < 9 && y >= 3 && y < 7;
            const std::array<int, 4> upper{128, 64, 0, 128};
            const std::array<int, 4> lower{64, 32, 0, 64};
            EXPECT_EQ(pixelAt(*symbol, x, y), !isInside ? nothing : y < 5 ? upper : lower) << x << " " << y;
        }
    }
}

TEST_F(MacSystemImagesTest, ASymbolTooWideOrTooHighForItsBoxIsShrunkInItsProportions) {
    fakeMac.symbolWidth = 2;
    images.symbol("bubbles", {20, 20}, orange);
    EXPECT_THAT(calls(), testing::Contains("draw bubbles 16 at 0 5 20 10"));
    fakeMac.symbolWidth = 0.5;
    fakeMac.symbolHeight = 2;
    images.symbol("bar", {20, 20}, orange);
    EXPECT_THAT(calls(), testing::Contains("draw bar 16 at 8 0 5 20"));
}

TEST_F(MacSystemImagesTest, TheSmallerSideOfABoxSetsTheSizeAndThePlaceIsOnWholePixels) {
    images.symbol("dot", {40, 15}, orange);
    EXPECT_THAT(calls(), ElementsAre("bitmap 40 15", "clear 0 0 40 15", "draw dot 12 at 14 2 12 12",
                                     "fill what is there 0 0 40 15"));
}

TEST_F(MacSystemImagesTest, ASymbolThatTheSystemDoesNotKnowIsLeftToOthers) {
    fakeMac.hasSymbol = false;
    EXPECT_FALSE(images.symbol("no.such.symbol", {20, 20}, orange));
    EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(MacSystemImagesTest, WithoutABitmapAContextOrBytesThereIsNoImage) {
    fakeMac.bitmapsHaveBytes = false;
    EXPECT_FALSE(images.symbol("phone", {20, 20}, orange));
    EXPECT_FALSE(images.applicationIcon({64, 64}));
    calls();
    fakeMac.makesGraphicsContexts = false;
    EXPECT_FALSE(images.symbol("phone", {20, 20}, orange));
    EXPECT_FALSE(images.applicationIcon({64, 64}));
    fakeMac.makesBitmaps = false;
    EXPECT_FALSE(images.symbol("phone", {20, 20}, orange));
    EXPECT_FALSE(images.applicationIcon({64, 64}));
    EXPECT_THAT(calls(), ElementsAre("bitmap 20 20", "bitmap 64 64", "bitmap 20 20", "bitmap 64 64"))
        << "nothing is drawn anywhere else";
}

TEST_F(MacSystemImagesTest, TheIconOfTheApplicationFillsItsBoxInItsOwnColours) {
    const auto icon = images.applicationIcon({128, 128});
    EXPECT_THAT(calls(), ElementsAre("bitmap 128 128", "clear 0 0 128 128", "draw the icon at 0 0 128 128"));
    ASSERT_TRUE(icon);
    EXPECT_EQ(pixelAt(*icon, 0, 0), (std::array<int, 4>{0, 0, 0, 255}));
    EXPECT_EQ(pixelAt(*icon, 127, 127), (std::array<int, 4>{0, 0, 0, 128}));
    fakeMac.iconHeight = 16;
    images.applicationIcon({128, 128});
    EXPECT_THAT(calls(), testing::Contains("draw the icon at 0 32 128 64"));
}

TEST_F(MacSystemImagesTest, AnIconThatIsAbsentOrEmptyIsLeftToOthers) {
    fakeMac.iconWidth = 0;
    EXPECT_FALSE(images.applicationIcon({64, 64}));
    fakeMac.hasApplicationIcon = false;
    EXPECT_FALSE(images.applicationIcon({64, 64}));
    EXPECT_THAT(calls(), IsEmpty());
}

} // namespace
} // namespace velloway::test
