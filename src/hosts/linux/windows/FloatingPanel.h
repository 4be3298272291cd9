#pragma once

#include <QWidget>

#include <optional>

class QVBoxLayout;

namespace velloway {

/// A small rounded window above the others, without frame or taskbar entry, that can be dragged by its
/// background. Follows the desktop's light or dark palette; what stands on it takes its colours from the roles
/// Window, WindowText, PlaceholderText (secondary text), Base (fields), Mid (borders), Highlight and Dark (the
/// same, pressed).
class FloatingPanel : public QWidget {
    Q_OBJECT

public:
    static constexpr int panelWidth = 350;

    /// Where the visible panel is; the window may be larger by its shadow.
    QRect panelGeometry() const;
    void placePanelAt(QPoint topLeft);
    bool wasMovedByUser() const { return wasMovedByUser_; }
    /// Fits the height to the content.
    void fitHeight();

protected:
    explicit FloatingPanel(QWidget* parent = nullptr);

    /// Room for the content, inside the padding.
    QVBoxLayout* content() const { return content_; }
    /// A round button that asks to be closed, for a corner of the content.
    QWidget* makeCloseButton(const QString& accessibleName);

    /// Made when it is asked for first.
    QWindow& nativeWindow();

    virtual void closeRequested() = 0;
    virtual void backgroundClicked() {}

    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    struct Drag {
        QPoint grip;
        QPoint start;
        bool hasMoved = false;
    };

    void applyColors();
    QRect panelRect() const;

    QVBoxLayout* content_;
    int shadow_;
    std::optional<Drag> drag_;
    bool wasMovedByUser_ = false;
};

} // namespace velloway
