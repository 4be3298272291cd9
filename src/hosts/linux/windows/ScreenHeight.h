#pragma once

#include <QGuiApplication>
#include <QScreen>

namespace velloway {

/// Positions of the port count from the bottom of the main screen, those of Qt from its top. `height` is that
/// of what stands at `y`. There must be a screen.
inline int flipped(double y, int height) {
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    return screen.y() + screen.height() - static_cast<int>(y) - height;
}

} // namespace velloway
