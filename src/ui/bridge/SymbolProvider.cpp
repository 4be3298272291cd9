#include "bridge/SymbolProvider.h"

#include "bridge/Convert.h"

#include <QPainter>
#include <QSvgRenderer>

namespace velloway {

namespace {

QString fileOf(const QString& name) {
    return QStringLiteral(":/symbols/") + QString(name).replace('.', '_') + QStringLiteral(".svg");
}

Tint toTint(const QColor& color) {
    return {color.redF(), color.greenF(), color.blueF(), color.alphaF()};
}

} // namespace

QImage drawSymbol(const QString& name, const QColor& color, QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QSvgRenderer renderer(fileOf(name));
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    QPainter painter(&image);
    renderer.render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

QImage SymbolProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
    const QSize pixels = requestedSize.isEmpty() ? QSize(24, 24) : requestedSize;
    if (size) {
        *size = pixels;
    }
    const QString name = id.section('/', 0, 0);
    const QColor color('#' + id.section('/', 1));
    const std::optional<Bitmap> own =
        system_ ? system_->symbol(fromQt(name), {pixels.width(), pixels.height()}, toTint(color))
                : std::nullopt;
    return own ? toQt(*own) : drawSymbol(name, color, pixels);
}

} // namespace velloway
