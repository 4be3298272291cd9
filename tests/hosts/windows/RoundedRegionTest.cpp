#include "hosts/linux/windows/RoundedRegion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace velloway::test {
namespace {

TEST(RoundedRegion, FollowsACircleInEveryCorner) {
    constexpr QSize size(350, 80);
    for (const int radius : {12, 14}) {
        const QRegion region = roundedRegion(size, radius);
        EXPECT_EQ(region.boundingRect(), QRect(QPoint(), size));
        for (int y = 0; y < size.height(); ++y) {
            for (int x = 0; x < size.width(); ++x) {
                // To the middle of the nearest corner's circle.
                const double fromSide = std::min(x, size.width() - 1 - x) + 0.5;
                const double fromTop = std::min(y, size.height() - 1 - y) + 0.5;
                const double distance =
                    std::hypot(std::max(0.0, radius - fromSide), std::max(0.0, radius - fromTop));
                const bool isInside = region.contains(QPoint(x, y));
                EXPECT_TRUE(isInside || distance > radius - 0.6) << x << ',' << y << " is missing";
                EXPECT_TRUE(!isInside || distance < radius + 0.6) << x << ',' << y << " is too much";
                EXPECT_EQ(isInside, region.contains(QPoint(size.width() - 1 - x, y)));
                EXPECT_EQ(isInside, region.contains(QPoint(x, size.height() - 1 - y)));
            }
        }
    }
}

} // namespace
} // namespace velloway::test
