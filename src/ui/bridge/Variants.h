#pragma once

#include "platform/SystemImages.h"
#include "tabs/Style.h"

#include <QImage>
#include <QString>
#include <QVariant>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

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

/// How a value of the core looks in QML; an absent one is null.
inline QVariant toVariant(std::string_view value) {
    return toQt(value);
}
inline QVariant toVariant(const std::string& value) {
    return toQt(value);
}
inline QVariant toVariant(bool value) {
    return value;
}
inline QVariant toVariant(std::int64_t value) {
    return QVariant::fromValue(static_cast<qlonglong>(value));
}
inline QVariant toVariant(double value) {
    return value;
}
/// The name of the colour in the theme.
inline QVariant toVariant(ColorRole value) {
    switch (value) {
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
template <class T> QVariant toVariant(const std::optional<T>& value) {
    return value ? toVariant(*value) : QVariant::fromValue(nullptr);
}

inline void fromVariant(const QVariant& value, std::string& out) {
    out = fromQt(value.toString());
}
inline void fromVariant(const QVariant& value, bool& out) {
    out = value.toBool();
}
inline void fromVariant(const QVariant& value, std::int64_t& out) {
    out = value.toLongLong();
}

} // namespace velloway
