// Draws the images of the bundle from the icon of the status bar: RenderIcons STATUS_ICON.svg FOLDER
// FOLDER gets StatusIcon.png, StatusIcon@2x.png and Velloway.iconset/.

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QSvgRenderer>

namespace {

QImage drawn(QSvgRenderer& symbol, int size) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    symbol.render(&painter);
    return image;
}

QImage inWhite(QImage symbol) {
    QPainter painter(&symbol);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(symbol.rect(), Qt::white);
    return symbol;
}

/// The symbol on a rounded square with the margin that icons of the platform have.
QImage applicationIcon(QSvgRenderer& symbol, int size) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF plate = QRectF(image.rect()).adjusted(size * 0.1, size * 0.1, -size * 0.1, -size * 0.1);
    QLinearGradient blue(plate.topLeft(), plate.bottomLeft());
    blue.setColorAt(0, QColor(0x3b, 0x9b, 0xff));
    blue.setColorAt(1, QColor(0x0a, 0x5f, 0xe0));
    painter.setPen(Qt::NoPen);
    painter.setBrush(blue);
    painter.drawRoundedRect(plate, plate.width() * 0.22, plate.width() * 0.22);
    const int inner = qMax(1, static_cast<int>(plate.width() * 0.62));
    painter.drawImage(QPoint((size - inner) / 2, (size - inner) / 2), inWhite(drawn(symbol, inner)));
    return image;
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    if (argc != 3) {
        return 2;
    }
    QSvgRenderer symbol(QString::fromLocal8Bit(argv[1]));
    const QDir folder(QString::fromLocal8Bit(argv[2]));
    bool works = symbol.isValid() && folder.mkpath("Velloway.iconset");
    works = works && drawn(symbol, 18).save(folder.filePath("StatusIcon.png")) &&
            drawn(symbol, 36).save(folder.filePath("StatusIcon@2x.png"));
    for (const int points : {16, 32, 128, 256, 512}) {
        const QString name = folder.filePath(QString("Velloway.iconset/icon_%1x%1").arg(points));
        works = works && applicationIcon(symbol, points).save(name + ".png") &&
                applicationIcon(symbol, 2 * points).save(name + "@2x.png");
    }
    return works ? 0 : 1;
}
