#include "hosts/linux/desktop/StatusIcons.h"

#include <QFile>
#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QSvgRenderer>

#include <algorithm>

namespace velloway {

namespace {

const QColor forDarkPanels(0xf2, 0xf2, 0xf2);
const QColor forLightPanels(0x2b, 0x2b, 0x2b);

QString resourceOf(const StatusImage& image) {
    return QStringLiteral(":/velloway/status/") + QString::fromStdString(image.name).replace('.', '_') +
           QStringLiteral(".svg");
}

QPixmap drawn(QSvgRenderer& renderer, int size, const QColor& colour) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    renderer.render(&painter);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(pixmap.rect(), colour);
    return pixmap;
}

} // namespace

bool hasStatusImage(const StatusImage& image) {
    return QFile::exists(resourceOf(image));
}

QIcon statusIcon(const StatusImage& image, const QColor& colour) {
    QSvgRenderer renderer(resourceOf(image));
    if (!renderer.isValid()) {
        return {};
    }
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 44, 48, 64}) {
        icon.addPixmap(drawn(renderer, size, colour));
    }
    return icon;
}

QColor panelTextColour() {
    // The panels of these are dark whatever the colours of the windows.
    const QString desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP");
    for (const char* dark : {"GNOME", "Unity", "Pantheon", "Budgie"}) {
        if (desktop.contains(QLatin1String(dark), Qt::CaseInsensitive)) {
            return forDarkPanels;
        }
    }
    const QPalette palette = QGuiApplication::palette();
    return palette.color(QPalette::Window).lightness() < 128 ? forDarkPanels : forLightPanels;
}

} // namespace velloway
