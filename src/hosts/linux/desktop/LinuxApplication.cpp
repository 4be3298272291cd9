#include "hosts/linux/desktop/LinuxApplication.h"

#include "hosts/linux/windows/WindowSpaces.h"

#include <QGuiApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QWindow>

namespace velloway {

namespace {

QMessageBox::Icon iconFor(Alert::Style style) {
    switch (style) {
    case Alert::Style::informational:
        return QMessageBox::Information;
    case Alert::Style::critical:
        return QMessageBox::Critical;
    case Alert::Style::warning:
        break;
    }
    return QMessageBox::Warning;
}

bool isOrdinaryWindow(const QWindow* window) {
    return window->isVisible() && (window->type() == Qt::Window || window->type() == Qt::Dialog);
}

} // namespace

LinuxApplication::LinuxApplication() {
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (state == Qt::ApplicationActive && delegate_ != nullptr) {
            delegate_->applicationDidBecomeActive();
        }
    });
}

void LinuxApplication::setDelegate(ApplicationDelegate* delegate) {
    delegate_ = delegate;
}

void LinuxApplication::activate() {
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (isOrdinaryWindow(window)) {
            window->raise();
            activateForUser(*window);
        }
    }
}

void LinuxApplication::bringForward() {
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (isOrdinaryWindow(window)) {
            window->setWindowStates(window->windowStates() & ~Qt::WindowMinimized);
            window->raise();
            bringToUser(*window);
        }
    }
}

int LinuxApplication::runModal(const Alert& alert) {
    QMessageBox box(iconFor(alert.style), QGuiApplication::applicationDisplayName(),
                    QString::fromStdString(alert.messageText));
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(QString::fromStdString(alert.informativeText));
    std::vector<QAbstractButton*> buttons;
    for (const std::string& title : alert.buttons) {
        const auto role = buttons.empty() ? QMessageBox::AcceptRole : QMessageBox::RejectRole;
        buttons.push_back(box.addButton(QString::fromStdString(title).replace('&', QLatin1String("&&")), role));
    }
    const std::size_t escapeIndex = buttons.size() > 1 ? 1 : 0;
    if (!buttons.empty()) {
        box.setDefaultButton(static_cast<QPushButton*>(buttons.front()));
        box.setEscapeButton(buttons[escapeIndex]);
    }
    box.exec();
    const auto clicked = std::find(buttons.begin(), buttons.end(), box.clickedButton());
    return clicked != buttons.end() ? static_cast<int>(clicked - buttons.begin())
                                    : static_cast<int>(escapeIndex);
}

bool LinuxApplication::hasVisibleWindows() {
    const QWindowList windows = QGuiApplication::topLevelWindows();
    return std::any_of(windows.begin(), windows.end(), isOrdinaryWindow);
}

} // namespace velloway
