#pragma once

#include "tabs/Style.h"

#include <QColor>
#include <QGuiApplication>
#include <QPalette>

namespace velloway {

/// A colour of the views, as light or dark as the desktop is now. Main thread.
inline QColor present(const PaletteColor& color) {
    const bool isDark = QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
    return QColor::fromRgba(isDark ? color.dark : color.light);
}

} // namespace velloway
