#include "hosts/linux/windows/FloatingPanel.h"

#include "hosts/linux/windows/Compositing.h"
#include "hosts/linux/windows/PresentColor.h"
#include "hosts/linux/windows/RoundedRegion.h"
#include "hosts/linux/windows/WindowSpaces.h"
#include "tabs/Style.h"

#include <QAbstractButton>
#include <QApplication>
#include <QFontInfo>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QVBoxLayout>
#include <QWindow>

namespace velloway {

namespace {

constexpr int cornerRadius = 14;
constexpr int padding = 14;
constexpr int shadowReach = 14;
constexpr int fontPixels = 13;

/// A cross in a disc that shows under the pointer or with the keyboard on it.
class CloseButton : public QAbstractButton {
public:
    explicit CloseButton(QWidget* parent) : QAbstractButton(parent) {
        setFixedSize(20, 20);
        setCursor(Qt::ArrowCursor);
        setFocusPolicy(Qt::TabFocus);
        setAttribute(Qt::WA_Hover);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QColor disc = palette().color(QPalette::WindowText);
        disc.setAlphaF(isDown() ? 0.22f : underMouse() || hasFocus() ? 0.14f : 0.06f);
        painter.setPen(Qt::NoPen);
        painter.setBrush(disc);
        painter.drawEllipse(QRectF(rect()).adjusted(1, 1, -1, -1));
        painter.setPen(QPen(palette().color(QPalette::PlaceholderText), 1.5, Qt::SolidLine, Qt::RoundCap));
        const QRectF cross(7, 7, 6, 6);
        painter.drawLine(cross.topLeft(), cross.bottomRight());
        painter.drawLine(cross.topRight(), cross.bottomLeft());
    }
};

/// Without the last family some emoji would come from a text font, in black and white. The first must be a real
/// one: behind a mere alias, the emoji font would give the blanks and digits of every text, far too wide.
QFont panelFont() {
    QFont font = QApplication::font();
    font.setFamilies({QFontInfo(font).family(), QStringLiteral("Noto Color Emoji")});
    font.setPixelSize(fontPixels);
    return font;
}

} // namespace

FloatingPanel::FloatingPanel(QWidget* parent)
    : QWidget(parent,
              Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::NoDropShadowWindowHint),
      content_(new QVBoxLayout(this)),
      shadow_(isCompositing() ? shadowReach : 0) {
    setAttribute(Qt::WA_TranslucentBackground, shadow_ > 0);
    const int margin = padding + shadow_;
    content_->setContentsMargins(margin, margin, margin, margin);
    content_->setSpacing(4);
    setFixedWidth(panelWidth + 2 * shadow_);
    setFont(panelFont());
    applyColors();
}

void FloatingPanel::applyColors() {
    QPalette own = QApplication::palette();
    const QColor text = present(paletteColor("primary"));
    const QColor accent = present(paletteColor("blue"));
    own.setColor(QPalette::Window, present(paletteColor("panel")));
    own.setColor(QPalette::Mid, present(paletteColor("outline")));
    own.setColor(QPalette::WindowText, text);
    own.setColor(QPalette::Text, text);
    own.setColor(QPalette::PlaceholderText, present(paletteColor("secondary")));
    own.setColor(QPalette::Base, present(paletteColor("button")));
    own.setColor(QPalette::Highlight, accent);
    own.setColor(QPalette::HighlightedText, present(paletteColor("white")));
    own.setColor(QPalette::Dark, accent.darker(120));
    setPalette(own);
}

QRect FloatingPanel::panelRect() const {
    return rect().adjusted(shadow_, shadow_, -shadow_, -shadow_);
}

QRect FloatingPanel::panelGeometry() const {
    return panelRect().translated(pos());
}

void FloatingPanel::placePanelAt(QPoint topLeft) {
    move(topLeft - QPoint(shadow_, shadow_));
}

void FloatingPanel::fitHeight() {
    content_->activate();
    const int wanted = content_->hasHeightForWidth() ? content_->totalHeightForWidth(width())
                                                     : content_->totalSizeHint().height();
    setFixedHeight(wanted);
}

QWindow& FloatingPanel::nativeWindow() {
    winId();
    return *windowHandle();
}

QWidget* FloatingPanel::makeCloseButton(const QString& accessibleName) {
    auto* button = new CloseButton(this);
    button->setAccessibleName(accessibleName);
    button->setToolTip(accessibleName);
    connect(button, &QAbstractButton::clicked, this, [this] { closeRequested(); });
    return button;
}

bool FloatingPanel::event(QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange) {
        applyColors();
    }
    if (event->type() == QEvent::Close && event->spontaneous()) {
        event->ignore();
        closeRequested();
        return true;
    }
    return QWidget::event(event);
}

void FloatingPanel::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        return closeRequested();
    }
    QWidget::keyPressEvent(event);
}

void FloatingPanel::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        const QPoint at = event->globalPosition().toPoint();
        drag_ = Drag{.grip = at - pos(), .start = at};
    }
}

void FloatingPanel::mouseMoveEvent(QMouseEvent* event) {
    const QPoint at = event->globalPosition().toPoint();
    if (!drag_ ||
        (!drag_->hasMoved && (at - drag_->start).manhattanLength() < QApplication::startDragDistance())) {
        return;
    }
    wasMovedByUser_ = true;
    if (!std::exchange(drag_->hasMoved, true) && canSystemMove(*windowHandle()) &&
        windowHandle()->startSystemMove()) {
        drag_.reset();
        return;
    }
    move(at - drag_->grip);
}

void FloatingPanel::mouseReleaseEvent(QMouseEvent* event) {
    const auto drag = std::exchange(drag_, std::nullopt);
    if (drag && !drag->hasMoved && event->button() == Qt::LeftButton) {
        backgroundClicked();
    }
}

void FloatingPanel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor background = palette().color(QPalette::Window);
    if (shadow_ > 0) {
        painter.setPen(Qt::NoPen);
        for (int reach = shadow_; reach > 0; --reach) {
            const double nearness = 1.0 - double(reach) / (shadow_ + 1);
            painter.setBrush(QColor(0, 0, 0, int(9 * nearness * nearness)));
            painter.drawRoundedRect(panelRect().adjusted(-reach, -reach + 3, reach, reach),
                                    cornerRadius + reach, cornerRadius + reach);
        }
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.setBrush(background);
        painter.drawRoundedRect(panelRect(), cornerRadius, cornerRadius);
        painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    } else {
        background.setAlpha(255);
        painter.fillRect(rect(), background);
    }
    painter.setPen(QPen(palette().color(QPalette::Mid), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(panelRect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius, cornerRadius);
}

void FloatingPanel::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (shadow_ == 0) {
        setMask(roundedRegion(size(), cornerRadius));
    }
}

} // namespace velloway
