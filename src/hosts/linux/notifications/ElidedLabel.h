#pragma once

#include <QLabel>

namespace velloway {

/// Plain text over at most `maxLines` lines; what does not fit ends in an ellipsis. Each paragraph runs in the
/// direction of its own letters. Screen readers get the whole text.
class ElidedLabel : public QLabel {
public:
    ElidedLabel(const QString& text, int maxLines, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

    /// The lines as they are painted at this width.
    QStringList linesAt(int width) const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int maxLines_;
};

} // namespace velloway
