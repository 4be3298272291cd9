#pragma once

#include "platform/SystemImages.h"
#include "tabs/Style.h"

#include <QImage>
#include <QString>
#include <QVariant>

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
