#pragma once

#include <QRegion>
#include <QSize>

#include <cmath>

namespace velloway {

/// A rectangle with round corners, row by row: what is left of a polygon in whole pixels looks cut off.
inline QRegion roundedRegion(QSize size, int radius) {
    QRegion region(0, radius, size.width(), size.height() - 2 * radius);
    for (int row = 0; row < radius; ++row) {
        const double height = radius - row - 0.5;
        const double inset = radius - std::sqrt(radius * radius - height * height);
        const int left = static_cast<int>(std::lround(inset));
        const int width = size.width() - 2 * left;
        region += QRect(left, row, width, 1);
        region += QRect(left, size.height() - 1 - row, width, 1);
    }
    return region;
}

} // namespace velloway
