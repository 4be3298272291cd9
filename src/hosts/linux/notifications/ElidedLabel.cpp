#include "hosts/linux/notifications/ElidedLabel.h"

#include <QPainter>
#include <QTextLayout>

#include <algorithm>

namespace velloway {

namespace {

/// Cuts one paragraph into lines; the last that may still be used takes all the rest.
void breakParagraph(const QString& paragraph, const QFont& font, int width, int maxLines, QStringList& lines) {
    QTextLayout layout(paragraph, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    while (lines.size() < maxLines) {
        QTextLine line = layout.createLine();
        if (!line.isValid()) {
            break;
        }
        line.setLineWidth(width);
        const bool isLast = lines.size() + 1 == maxLines;
        lines << (isLast ? paragraph.mid(line.textStart())
                         : paragraph.mid(line.textStart(), line.textLength()).trimmed());
    }
    layout.endLayout();
}

} // namespace

ElidedLabel::ElidedLabel(const QString& text, int maxLines, QWidget* parent)
    : QLabel(parent), maxLines_(maxLines) {
    setTextFormat(Qt::PlainText);
    setText(text);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QStringList ElidedLabel::linesAt(int width) const {
    QStringList lines;
    const QStringList paragraphs = text().split(u'\n', Qt::SkipEmptyParts);
    for (qsizetype i = 0; i < paragraphs.size() && lines.size() < maxLines_; ++i) {
        breakParagraph(paragraphs[i], font(), width, maxLines_, lines);
        if (lines.size() == maxLines_ && i + 1 < paragraphs.size()) {
            lines.back() += u' ' + paragraphs.mid(i + 1).join(u' ');
        }
    }
    for (QString& line : lines) {
        line = fontMetrics().elidedText(line, Qt::ElideRight, width);
    }
    return lines;
}

int ElidedLabel::heightForWidth(int width) const {
    return std::max(1, int(linesAt(width).size())) * fontMetrics().lineSpacing();
}

QSize ElidedLabel::sizeHint() const {
    return {200, heightForWidth(200)};
}

QSize ElidedLabel::minimumSizeHint() const {
    return {40, fontMetrics().lineSpacing()};
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    int baseline = fontMetrics().ascent();
    for (const QString& line : linesAt(width())) {
        const bool isRightToLeft = line.isRightToLeft();
        painter.setLayoutDirection(isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
        // By the base line, as emoji would push the rest of a line that is placed by its height.
        painter.drawText(isRightToLeft ? width() - fontMetrics().horizontalAdvance(line) : 0, baseline, line);
        baseline += fontMetrics().lineSpacing();
    }
}

} // namespace velloway
