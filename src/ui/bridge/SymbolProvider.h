#pragma once

#include "platform/SystemImages.h"

#include <QColor>
#include <QQuickImageProvider>
#include <QString>

#include <memory>
#include <utility>

namespace velloway {

/// A symbol of our own set, drawn in one colour at the given size in pixels. Any thread.
QImage drawSymbol(const QString& name, const QColor& color, QSize size);

/// Serves `image://symbol/<name>/<rrggbb or aarrggbb>`: the system's own symbol where it has one of that name,
/// and that of our set otherwise.
class SymbolProvider : public QQuickImageProvider {
public:
    explicit SymbolProvider(std::shared_ptr<const SystemImages> system)
        : QQuickImageProvider(Image), system_(std::move(system)) {}
    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;

private:
    std::shared_ptr<const SystemImages> system_;
};

} // namespace velloway
