#pragma once

#include "platform/SystemImages.h"
#include "tabs/Style.h"

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

/// How many bytes of a text can show at most: on one line, in a few lines, and in a message. Laying out a text
/// takes time in step with its length, and a phone sends texts of any length.
inline constexpr std::size_t lineBytes = 1024;
inline constexpr std::size_t paragraphBytes = 4096;
inline constexpr std::size_t messageBytes = 8192;

inline bool continuesCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// The head of a text that is longer than `bytes`, with an ellipsis; no character is split.
inline QString cut(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) {
        return toQt(text);
    }
    std::size_t end = bytes;
    while (end > 0 && continuesCharacter(text[end])) {
        --end;
    }
    return toQt(text.substr(0, end)) + QChar(0x2026);
}

/// The same for the tail.
inline QString cutHead(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) {
        return toQt(text);
    }
    std::size_t start = text.size() - bytes;
    while (start < text.size() && continuesCharacter(text[start])) {
        ++start;
    }
    return QChar(0x2026) + toQt(text.substr(start));
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
