#include "ui/SeenView.h"

#include "tabs/Style.h"

#include <QAccessible>
#include <QCursor>
#include <QFont>
#include <QGuiApplication>
#include <QJSValue>
#include <QMetaEnum>
#include <QQmlListReference>
#include <QQuickItem>

#include <algorithm>
#include <array>
#include <cmath>

namespace velloway::test {

namespace {

std::string number(double value) {
    // Half a pixel is seen, less is the way in which fonts are laid out.
    const double rounded = std::round(value * 2) / 2;
    QString text = QString::number(rounded, 'f', 1);
    text.remove(QStringLiteral(".0"));
    return text == QLatin1String("-0") ? "0" : text.toStdString();
}

std::string quoted(QString text) {
    text.replace('\n', QStringLiteral("\\n"));
    if (text.size() > 120) {
        text = text.left(120) + QStringLiteral("... (%1)").arg(text.size());
    }
    return '"' + text.toStdString() + '"';
}

/// Walks a window and collects what is drawn.
class Onlooker {
public:
    explicit Onlooker(QQuickWindow& window) : view_(QPointF(), QSizeF(window.size())) {
        visit(window.contentItem(), view_, 1);
        std::stable_sort(parts_.begin(), parts_.end(), [](const SeenPart& a, const SeenPart& b) {
            return std::pair(a.place.y(), a.place.x()) < std::pair(b.place.y(), b.place.x());
        });
    }

    std::vector<SeenPart> take() { return std::move(parts_); }

private:
    static bool comesAndGoes(const QQuickItem& item) {
        return item.inherits("QQuickScrollBar") ||
               (item.inherits("QQuickPopupItem") && item.parent() && item.parent()->inherits("QQuickToolTip"));
    }

    void visit(QQuickItem* item, QRectF clip, double opacity) {
        opacity *= item->opacity();
        if (!item->isVisible() || opacity < 0.01 || comesAndGoes(*item)) {
            return;
        }
        if (item->clip()) {
            clip &= item->mapRectToScene(item->boundingRect());
        }
        const QRectF place = item->mapRectToScene(QRectF(0, 0, item->width(), item->height()));
        if (!(place & clip).isEmpty()) {
            clip_ = clip;
            place_ = place;
            opacity_ = opacity;
            look(*item);
        }
        for (QQuickItem* child : item->childItems()) {
            visit(child, clip, opacity);
        }
    }

    void look(const QQuickItem& item) {
        lookAtManners(item);
        if (item.inherits("QQuickText")) {
            lookAtText(item, item.property("text").toString(), item.property("color"));
        } else if (item.inherits("QQuickTextInput")) {
            lookAtText(item, item.property("displayText").toString(), item.property("color"));
            lookAtSelection(item);
        } else if (item.inherits("QQuickTextEdit")) {
            lookAtText(item, item.property("text").toString(), item.property("color"));
            lookAtSelection(item);
        } else if (item.inherits("QQuickImage")) {
            lookAtPicture(item);
        } else if (item.inherits("QQuickRectangle")) {
            lookAtBox(item);
        }
    }

    /// What is noticed only as the view is used, or with other contents.
    void lookAtManners(const QQuickItem& item) {
        if (item.inherits("QQuickFlickable")) {
            add(scroller(item), {});
        } else if (item.clip()) {
            add("clips", {});
        }
        if (const Qt::CursorShape shape = item.cursor().shape(); shape != Qt::ArrowCursor) {
            add("pointer " + std::to_string(shape), {});
        }
        if (const QString tip = item.property("tip").toString(); !tip.isEmpty()) {
            add("tip " + quoted(tip), {});
        }
    }

    static std::string scroller(const QQuickItem& item) {
        std::string words = item.clip() ? "scrolls" : "scrolls unclipped";
        if (const int bounds = item.property("boundsBehavior").toInt(); bounds != 0) {
            words += " beyond its bounds " + std::to_string(bounds);
        }
        if (!item.inherits("QQuickListView")) {
            return words + " high " + number(item.property("contentHeight").toDouble());
        }
        words += " rows " + std::to_string(item.property("count").toInt());
        words += " on " + std::to_string(item.property("currentIndex").toInt());
        words += item.property("reuseItems").toBool() ? " reused" : "";
        for (const char* margin : {"topMargin", "bottomMargin", "leftMargin", "rightMargin"}) {
            words += ' ' + number(item.property(margin).toDouble());
        }
        return words;
    }

    /// What a text of another length would show.
    static std::string shaping(const QQuickItem& item) {
        std::string words;
        const int wrapMode = item.property("wrapMode").toInt();
        words += wrapMode == 0 ? "" : wrapMode == 4 ? " wraps" : " wraps " + std::to_string(wrapMode);
        if (!item.inherits("QQuickText")) {
            words += item.property("selectByMouse").toBool() ? "" : " unselectable";
            return words + (item.property("readOnly").toBool() ? "" : " typed");
        }
        const std::array cuts{" cuts left", " cuts right", " cuts middle", ""};
        words += cuts.at(item.property("elide").toUInt());
        if (const int most = item.property("maximumLineCount").toInt(); most < 1000) {
            words += " lines at most " + std::to_string(most);
        }
        if (item.property("fontSizeMode").toInt() != 0) {
            words += " shrinks to " + std::to_string(item.property("minimumPixelSize").toInt());
        }
        const std::array formats{"", " rich", " auto", " styled"};
        return words + formats.at(item.property("textFormat").toUInt());
    }

    void lookAtText(const QQuickItem& item, const QString& text, const QVariant& color) {
        if (text.trimmed().isEmpty()) {
            return;
        }
        const QFont font = item.property("font").value<QFont>();
        std::string words = "text " + quoted(text) + " %1 " + std::to_string(font.pixelSize());
        if (font.weight() != QFont::Normal) {
            words += " weight " + std::to_string(font.weight());
        }
        words += font.underline() ? " underlined" : "";
        if (font.family() != QGuiApplication::font().family()) {
            words += " in " + font.family().toStdString();
        }
        if (item.property("truncated").toBool()) {
            words += " cut";
        }
        if (const int lines = item.property("lineCount").toInt(); lines > 1) {
            words += " lines " + std::to_string(lines);
        }
        const int alignment = item.property("effectiveHorizontalAlignment").toInt();
        if (alignment == Qt::AlignHCenter || alignment == Qt::AlignRight) {
            words += alignment == Qt::AlignRight ? " right" : " centred";
        }
        if (item.property("verticalAlignment").toInt() == Qt::AlignVCenter) {
            words += " middle";
        }
        words += shaping(item) + " wide " + number(item.property("contentWidth").toDouble());
        add(words, {color.value<QColor>()});
    }

    void lookAtSelection(const QQuickItem& item) {
        const QString selected = item.property("selectedText").toString();
        if (!selected.isEmpty()) {
            add("selected " + quoted(selected) + " %1 on %2",
                {item.property("selectedTextColor").value<QColor>(),
                 item.property("selectionColor").value<QColor>()});
        }
    }

    void lookAtPicture(const QQuickItem& item) {
        const QUrl source = item.property("source").toUrl();
        if (source.isEmpty()) {
            return;
        }
        const QStringList path = source.path().split('/', Qt::SkipEmptyParts);
        const QSize pixels = item.property("sourceSize").toSize();
        const std::string size = pixels == QSize() ? "" : " drawn " + std::to_string(pixels.width());
        if (source.host() == QLatin1String("symbol") && path.size() == 2) {
            add("symbol " + path[0].toStdString() + " %1" + size, {QColor('#' + path[1])});
        } else {
            const int fill = item.property("fillMode").toInt();
            add("picture " + source.host().toStdString() + size + " fill " + std::to_string(fill), {});
        }
    }

    void lookAtBox(const QQuickItem& item) {
        std::vector<QColor> colors{item.property("color").value<QColor>()};
        std::string words = "box %1";
        const auto* gradient = item.property("gradient").value<QJSValue>().toQObject();
        if (gradient) {
            QQmlListReference stops(const_cast<QObject*>(gradient), "stops");
            colors.clear();
            words = "box";
            for (qsizetype i = 0; i < stops.count(); ++i) {
                colors.push_back(stops.at(i)->property("color").value<QColor>());
                words += " %" + std::to_string(colors.size());
            }
        }
        const QObject* border = item.property("border").value<QObject*>();
        const QColor line = border ? border->property("color").value<QColor>() : QColor();
        const double width = border ? border->property("width").toDouble() : 0;
        // A box without a border answers with the standard one.
        const bool hasBorder = width > 0 && line.alpha() > 0 && line != QColor(Qt::black);
        if (hasBorder) {
            colors.push_back(line);
            words += " border " + number(width) + " %" + std::to_string(colors.size());
        }
        const bool isFilled = gradient || colors.front().alpha() > 0;
        if (!isFilled && !hasBorder) {
            return;
        }
        if (const double radius = item.property("radius").toDouble(); radius > 0) {
            words += " radius " + number(radius) + (item.antialiasing() ? "" : " jagged");
        }
        if (item.rotation() != 0) {
            words += " turned " + number(item.rotation());
        }
        add(words, colors);
    }

    void add(std::string words, const std::vector<QColor>& colors) {
        if (opacity_ < 0.99) {
            words += " opacity " + QString::number(opacity_, 'f', 2).toStdString();
        }
        const QRectF shown = place_ & clip_;
        words += " at " + number(place_.x()) + "," + number(place_.y()) + " " + number(place_.width()) + "x" +
                 number(place_.height());
        if (std::abs(shown.width() - place_.width()) > 0.5 ||
            std::abs(shown.height() - place_.height()) > 0.5) {
            words += " clipped to " + number(shown.width()) + "x" + number(shown.height());
        }
        std::vector<QRgb> values;
        for (const QColor& color : colors) {
            values.push_back(color.rgba());
        }
        parts_.push_back({place_.toRect().toRectF(), std::move(words), std::move(values)});
    }

    const QRectF view_;
    QRectF clip_;
    QRectF place_;
    double opacity_ = 1;
    std::vector<SeenPart> parts_;
};

bool isFaded(QRgb seen, Argb full, double opacity) {
    return (seen & 0xffffffU) == (full & 0xffffffU) &&
           std::abs(qAlpha(seen) - static_cast<int>(full >> 24U) * opacity) < 2.6;
}

std::string valueOf(QRgb color) {
    return QColor::fromRgba(color).name(QColor::HexArgb).toStdString();
}

/// Both values are those of a palette entry, whole or with the same opacity.
std::string colorName(const QRgb* light, QRgb dark) {
    if (qAlpha(dark) == 0) {
        return "clear";
    }
    for (const double share : {1.0, 0.6, 0.35, 0.3, 0.2, 0.15, 0.12, 0.1}) {
        for (const PaletteColor& entry : palette) {
            if (isFaded(dark, entry.dark, share) && (!light || isFaded(*light, entry.light, share)) &&
                (share == 1.0 || entry.dark >> 24U == 0xff)) {
                return std::string(entry.name) +
                       (share == 1.0 ? "" : "*" + QString::number(share).toStdString());
            }
        }
    }
    return light && *light != dark ? valueOf(*light) + "/" + valueOf(dark) : valueOf(dark);
}

std::string filled(const SeenPart& part, const std::vector<std::string>& names) {
    std::string words = part.words;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string mark = "%" + std::to_string(i + 1);
        if (const auto at = words.find(mark); at != std::string::npos) {
            words.replace(at, mark.size(), names[i]);
        }
    }
    return words;
}

std::string describedAlone(const SeenPart& part, bool isDark) {
    std::vector<std::string> names;
    for (const QRgb color : part.colors) {
        names.push_back(isDark ? colorName(nullptr, color) : valueOf(color));
    }
    return filled(part, names);
}

void hear(QAccessibleInterface* from, int depth, std::vector<std::string>& heard) {
    if (!from || !from->isValid() || from->state().invisible) {
        return;
    }
    const auto roles = QMetaEnum::fromType<QAccessible::Role>();
    std::string line(static_cast<std::size_t>(depth), ' ');
    const char* role = roles.valueToKey(from->role());
    line += std::string("says ") + (role ? role : "?") + " " + quoted(from->text(QAccessible::Name));
    if (const QString description = from->text(QAccessible::Description); !description.isEmpty()) {
        line += " (" + description.toStdString() + ")";
    }
    if (from->role() == QAccessible::EditableText) {
        line += " value " + quoted(from->text(QAccessible::Value));
    }
    const QAccessible::State state = from->state();
    // What a text says about itself depends on the order in which the engine sets its properties.
    const bool isText = from->role() == QAccessible::StaticText || from->role() == QAccessible::Heading;
    const std::pair<bool, const char*> states[] = {
        {state.selected, "selected"},     {state.checked, "checked"},
        {state.focused, "focused"},       {state.disabled, "disabled"},
        {state.editable, "editable"},     {state.focusable && !isText, "focusable"},
        {state.selectable, "selectable"}, {state.checkable, "checkable"},
        {state.hasPopup, "opens a menu"}};
    for (const auto& [holds, name] : states) {
        line += holds ? std::string(" ") + name : "";
    }
    heard.push_back(line);
    for (int i = 0; i < from->childCount(); ++i) {
        hear(from->child(i), depth + 1, heard);
    }
}

} // namespace

std::vector<SeenPart> seenOf(QQuickWindow& window) {
    return Onlooker(window).take();
}

std::vector<std::string> heardOf(QQuickWindow& window) {
    QAccessible::setActive(true);
    std::vector<std::string> heard;
    hear(QAccessible::queryAccessibleInterface(&window), 0, heard);
    return heard;
}

std::vector<std::string> described(const std::vector<SeenPart>& light, const std::vector<SeenPart>& dark) {
    std::vector<std::string> lines;
    const auto isSame = [](const SeenPart& a, const SeenPart& b) {
        return a.words == b.words && a.place == b.place && a.colors.size() == b.colors.size();
    };
    if (!std::equal(light.begin(), light.end(), dark.begin(), dark.end(), isSame)) {
        for (const SeenPart& part : light) {
            lines.push_back("light: " + describedAlone(part, false));
        }
        for (const SeenPart& part : dark) {
            lines.push_back("dark: " + describedAlone(part, true));
        }
        return lines;
    }
    for (std::size_t i = 0; i < light.size(); ++i) {
        std::vector<std::string> names;
        for (std::size_t color = 0; color < light[i].colors.size(); ++color) {
            names.push_back(colorName(&light[i].colors[color], dark[i].colors[color]));
        }
        lines.push_back(filled(light[i], names));
    }
    return lines;
}

std::vector<std::string> describedDark(const std::vector<SeenPart>& dark) {
    std::vector<std::string> lines;
    for (const SeenPart& part : dark) {
        lines.push_back(describedAlone(part, true));
    }
    return lines;
}

} // namespace velloway::test
