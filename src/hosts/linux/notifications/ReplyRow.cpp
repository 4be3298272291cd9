#include "hosts/linux/notifications/ReplyRow.h"

#include <QAbstractButton>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>

namespace velloway {

namespace {

constexpr int rowHeight = 30;
constexpr int cornerRadius = 8;

QRectF outlineOf(const QWidget& widget) {
    return QRectF(widget.rect()).adjusted(0.5, 0.5, -0.5, -0.5);
}

class Field : public QLineEdit {
public:
    explicit Field(QWidget* parent) : QLineEdit(parent) {
        setFrame(false);
        setFixedHeight(rowHeight);
        setTextMargins(8, 0, 8, 0);
        QPalette withoutBackground;
        withoutBackground.setColor(QPalette::Base, Qt::transparent);
        setPalette(withoutBackground);
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        {
            const QPalette& colors = parentWidget()->palette();
            QPainter painter(this);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(hasFocus() ? QPen(colors.color(QPalette::Highlight), 1.5)
                                      : QPen(colors.color(QPalette::Mid), 1));
            painter.setBrush(colors.color(QPalette::Base));
            painter.drawRoundedRect(outlineOf(*this), cornerRadius, cornerRadius);
        }
        QLineEdit::paintEvent(event);
    }
};

class SendButton : public QAbstractButton {
public:
    explicit SendButton(const QString& title, QWidget* parent) : QAbstractButton(parent) {
        setText(title);
        setAccessibleName(title);
        setFocusPolicy(Qt::TabFocus);
        setAttribute(Qt::WA_Hover);
        QFont bold = font();
        bold.setWeight(QFont::DemiBold);
        setFont(bold);
    }

    QSize sizeHint() const override { return {fontMetrics().horizontalAdvance(text()) + 28, rowHeight}; }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(hasFocus() ? QPen(palette().color(QPalette::WindowText), 1.5) : QPen(Qt::NoPen));
        painter.setBrush(palette().color(isDown() || underMouse() ? QPalette::Dark : QPalette::Highlight));
        painter.drawRoundedRect(outlineOf(*this), cornerRadius, cornerRadius);
        painter.setPen(palette().color(QPalette::HighlightedText));
        painter.drawText(rect(), Qt::AlignCenter, text());
    }

    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            return click();
        }
        QAbstractButton::keyPressEvent(event);
    }
};

} // namespace

ReplyRow::ReplyRow(const ReplyField& field, std::function<void(const QString& text)> send, QWidget* parent)
    : QWidget(parent), input_(new Field(this)) {
    auto* button = new SendButton(field.buttonTitle, this);
    input_->setPlaceholderText(field.placeholder);
    input_->setAccessibleName(field.placeholder);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 6, 0, 0);
    row->setSpacing(8);
    row->addWidget(input_, 1);
    row->addWidget(button);

    const auto sendText = [this, send = std::move(send)] { send(input_->text()); };
    connect(input_, &QLineEdit::returnPressed, this, sendText);
    connect(button, &QAbstractButton::clicked, this, sendText);
    setFocusProxy(input_);
}

} // namespace velloway
