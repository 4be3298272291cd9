#pragma once

#include <QWidget>

#include <vector>

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace velloway {

class LinuxStatusItem;
struct MenuItem;

/// The status menu as a small window, for desktops without a tray. Closing it ends nothing.
class TraylessWindow : public QWidget {
public:
    /// `statusItem` must outlive the window.
    explicit TraylessWindow(LinuxStatusItem& statusItem);

    void bringForward();

protected:
    bool event(QEvent* event) override;

private:
    void applyColors();
    void rebuild();
    void addHeader(QVBoxLayout& layout, const MenuItem& item);
    QLabel* addLine(QVBoxLayout& layout, const MenuItem& item);
    QPushButton* addButton(QVBoxLayout& layout, const MenuItem& item);
    void updateTitle(int index);

    LinuxStatusItem& statusItem_;
    QWidget* content_ = nullptr;
    /// What shows the title of each item; null for separators.
    std::vector<QWidget*> titles_;
};

} // namespace velloway
