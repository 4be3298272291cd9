#include "bridge/SymbolProvider.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>

namespace velloway {

namespace {

QString fileOf(const QString& name) {
    return QStringLiteral(":/symbols/") + QString(name).replace('.', '_') + QStringLiteral(".svg");
}

} // namespace

bool hasSymbol(const QString& name) {
    return QFile::exists(fileOf(name));
}

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
    return drawSymbol(id.section('/', 0, 0), QColor('#' + id.section('/', 1)), pixels);
}

} // namespace velloway
