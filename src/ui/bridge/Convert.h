#pragma once

#include "platform/SystemImages.h"
#include "tabs/Style.h"
#include "text/Utf8.h"

#include <QImage>
#include <QString>
#include <QVariant>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace velloway {

inline QString toQt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline std::string fromQt(const QString& text) {
    return text.toStdString();
}

inline QImage toQt(const Bitmap& bitmap) {
    const auto [width, height] = bitmap.size;
    return QImage(bitmap.rgba.data(), width, height, qsizetype{4} * width,
                  QImage::Format_RGBA8888_Premultiplied)
        .convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

/// How many bytes of a text can show at most: on one line, in a few lines, and in a message, which has so many
/// lines of its own at most. Laying out a text takes time in step with its length and its lines, and a phone
/// sends texts of any length.
inline constexpr std::size_t lineBytes = 1024;
inline constexpr std::size_t paragraphBytes = 4096;
inline constexpr std::size_t messageBytes = 4096;
inline constexpr int messageLines = 100;

/// The head of a text that is longer than `bytes`, with an ellipsis; no character is split.
inline QString cut(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) {
        return toQt(text);
    }
    return toQt(head(text, bytes)) + QChar(0x2026);
}

/// As much of a message as can show.
inline std::string_view shownPart(std::string_view text) {
    const std::string_view start = head(text, messageBytes);
    std::size_t end = 0;
    for (int line = 0; line < messageLines; ++line) {
        end = start.find('\n', end);
        if (end == std::string_view::npos) {
            return start;
        }
        ++end;
    }
    return start.substr(0, end);
}

inline QString withEllipsis(std::string_view text, bool isCut) {
    return isCut ? toQt(text) + QChar(0x2026) : toQt(text);
}

/// The same for the tail.
inline QString cutHead(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) {
        return toQt(text);
    }
    return QChar(0x2026) + toQt(tail(text, bytes));
}

/// The same for the middle, as file names are known by both ends.
inline QString cutMiddle(std::string_view text, std::size_t bytes) {
    return text.size() <= bytes ? toQt(text) : cut(text, bytes / 2) + cutHead(text, bytes / 2).mid(1);
}

template <class Text> QString cut(const std::optional<Text>& text, std::size_t bytes) {
    return text ? cut(*text, bytes) : QString();
}

/// A member of a row as far as it can show.
template <class Row, class Text> auto cutTo(std::size_t bytes, Text Row::*member) {
    return [bytes, member](const Row& row) { return cut(row.*member, bytes); };
}

/// Absent and empty look the same.
template <class Text> QString toQt(const std::optional<Text>& text) {
    return text ? toQt(*text) : QString();
}

/// The name of the colour in the theme.
inline QString toQt(ColorRole role) {
    switch (role) {
    case ColorRole::primary:
        return QStringLiteral("primary");
    case ColorRole::secondary:
        return QStringLiteral("secondary");
    case ColorRole::tint:
        return QStringLiteral("tint");
    case ColorRole::white:
        return QStringLiteral("white");
    case ColorRole::red:
        return QStringLiteral("red");
    case ColorRole::green:
        return QStringLiteral("green");
    case ColorRole::blue:
        return QStringLiteral("blue");
    case ColorRole::orange:
        return QStringLiteral("orange");
    }
    return {};
}

/// How a value of the core looks in QML.
template <class Value> QVariant toVariant(const Value& value) {
    if constexpr (std::is_arithmetic_v<Value> || std::is_same_v<Value, QString>) {
        return QVariant::fromValue(value);
    } else {
        return toQt(value);
    }
}

} // namespace velloway
