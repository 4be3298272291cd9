#pragma once

#include <QColor>
#include <QQuickImageProvider>
#include <QString>

namespace velloway {

/// A symbol of the set, drawn in one colour at the given size in pixels. Any thread.
QImage drawSymbol(const QString& name, const QColor& color, QSize size);
bool hasSymbol(const QString& name);

/// Serves `image://symbol/<name>/<rrggbb or aarrggbb>`.
class SymbolProvider : public QQuickImageProvider {
public:
    SymbolProvider() : QQuickImageProvider(Image) {}
    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

} // namespace velloway
