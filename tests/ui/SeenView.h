#pragma once

#include <QColor>
#include <QQuickWindow>

#include <string>
#include <vector>

namespace velloway::test {

/// One thing that is drawn in a window or that a screen reader says of it. Colours stand apart from the words,
/// which name them by %1, %2 and so on, as they differ between light and dark.
struct SeenPart {
    QRectF place;
    std::string words;
    std::vector<QRgb> colors;

    bool operator==(const SeenPart&) const = default;
};

/// All that the user sees of a window, from top to bottom and from left to right: texts, symbols, boxes, each
/// with its place, size and colours. What is clipped away, transparent or hidden is not there; nor are tool
/// tips and scroll bars, which come and go with time.
std::vector<SeenPart> seenOf(QQuickWindow& window);

/// All that a screen reader says of a window, in its order: role, name, description and state of each part.
std::vector<std::string> heardOf(QQuickWindow& window);

/// One line for each part, with the names that the palette has for the colours; a colour that the palette has
/// not is given by its value. `light` and `dark` are the same window in both modes; what differs but for the
/// colours is given once for each.
std::vector<std::string> described(const std::vector<SeenPart>& light, const std::vector<SeenPart>& dark);

/// The same from the dark mode alone, in which no two grounds have the same colour.
std::vector<std::string> describedDark(const std::vector<SeenPart>& dark);

} // namespace velloway::test
