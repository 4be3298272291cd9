#include "hosts/linux/desktop/TraylessWindow.h"

#include "hosts/linux/desktop/LinuxStatusItem.h"
#include "hosts/linux/desktop/StatusIcons.h"
#include "hosts/linux/windows/PresentColor.h"
#include "hosts/linux/windows/WindowSpaces.h"
#include "tabs/Style.h"

#include <QEvent>
#include <QFrame>
#include <QGuiApplication>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>
#include <QWindow>

#include <algorithm>

namespace velloway {

namespace {

constexpr int windowWidth = 300;
constexpr int iconSize = 28;

/// With a style sheet, widgets inherit no palette. %1 is the colour of the text, %2 the softer one of rows that
/// only inform, %3 that of a row under the pointer, %4 that of the lines between, %5 that of the keyboard and
/// of a pressed row, %6 that of its text, %7 that of the ground.
const char* const sheet = R"(
    QWidget#traylessWindow { background: %7; }
    QLabel#header { color: %1; font-size: 17px; font-weight: 600; }
    QLabel#line, QLabel#key { color: %2; }
    QFrame#separator { background: %4; border: none; }
    QPushButton { text-align: left; padding: 7px 10px; border: 1px solid transparent; border-radius: 6px;
                  background: transparent; color: %1; outline: none; }
    QPushButton:hover { background: %3; }
    QPushButton:focus { border-color: %5; }
    QPushButton:pressed { background: %5; color: %6; }
)";

QString buttonText(const MenuItem& item) {
    return QString::fromStdString(item.title).replace('&', QLatin1String("&&"));
}

} // namespace

TraylessWindow::TraylessWindow(LinuxStatusItem& statusItem) : statusItem_(statusItem) {
    setWindowTitle(QGuiApplication::applicationDisplayName());
    setObjectName(QStringLiteral("traylessWindow"));
    setAttribute(Qt::WA_StyledBackground);
    applyColors();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    connect(&statusItem_, &LinuxStatusItem::menuChanged, this, &TraylessWindow::rebuild);
    connect(&statusItem_, &LinuxStatusItem::itemTitleChanged, this, &TraylessWindow::updateTitle);
    rebuild();
}

void TraylessWindow::bringForward() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    bringToUser(*windowHandle());
}

bool TraylessWindow::event(QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange) {
        applyColors();
        rebuild();
    }
    return QWidget::event(event);
}

void TraylessWindow::applyColors() {
    QString colored = QString::fromLatin1(sheet);
    for (const PaletteColor& color :
         {paletteColor("primary"), paletteColor("secondary"), paletteColor("hover"), paletteColor("separator"),
          paletteColor("blue"), paletteColor("white"), paletteColor("window")}) {
        colored = colored.arg(present(color).name(QColor::HexArgb));
    }
    setStyleSheet(colored);
}

void TraylessWindow::rebuild() {
    const auto focused = std::find_if(titles_.begin(), titles_.end(),
                                      [](const QWidget* shown) { return shown && shown->hasFocus(); });
    const auto focusedIndex = static_cast<std::size_t>(focused - titles_.begin());
    if (content_ != nullptr) {
        // Later: one of its buttons may be what called for this.
        content_->hide();
        content_->deleteLater();
    }
    titles_.clear();
    content_ = new QWidget(this);
    content_->setFixedWidth(windowWidth);
    auto* column = new QVBoxLayout(content_);
    column->setContentsMargins(14, 16, 14, 14);
    column->setSpacing(2);
    for (const MenuItem& item : statusItem_.items()) {
        if (item.isSeparator) {
            auto* separator = new QFrame(content_);
            separator->setObjectName(QStringLiteral("separator"));
            separator->setFixedHeight(1);
            column->addSpacing(6);
            column->addWidget(separator);
            column->addSpacing(6);
            titles_.push_back(nullptr);
        } else if (titles_.empty()) {
            addHeader(*column, item);
        } else if (!item.isEnabled) {
            titles_.push_back(addLine(*column, item));
        } else {
            titles_.push_back(addButton(*column, item));
        }
    }
    layout()->addWidget(content_);
    // Not only once control is back with the event loop: what is not there takes no focus.
    content_->show();
    if (focusedIndex < titles_.size() && titles_[focusedIndex] != nullptr) {
        titles_[focusedIndex]->setFocus();
    }
}

void TraylessWindow::addHeader(QVBoxLayout& layout, const MenuItem& item) {
    auto* row = new QHBoxLayout;
    row->setContentsMargins(10, 0, 10, 0);
    row->setSpacing(10);
    auto* icon = new QLabel(content_);
    const StatusImage image{.kind = StatusImage::Kind::asset, .name = "StatusIcon"};
    icon->setPixmap(statusIcon(image, present(paletteColor("blue"))).pixmap(iconSize, iconSize));
    auto* title = new QLabel(QString::fromStdString(item.title), content_);
    title->setObjectName(QStringLiteral("header"));
    title->setTextFormat(Qt::PlainText);
    row->addWidget(icon);
    row->addWidget(title, 1);
    layout.addLayout(row);
    titles_.push_back(title);
}

QLabel* TraylessWindow::addLine(QVBoxLayout& layout, const MenuItem& item) {
    auto* line = new QLabel(QString::fromStdString(item.title), content_);
    line->setObjectName(QStringLiteral("line"));
    line->setTextFormat(Qt::PlainText);
    line->setTextInteractionFlags(Qt::TextSelectableByMouse);
    line->setWordWrap(true);
    line->setContentsMargins(10, 2, 10, 2);
    layout.addWidget(line);
    return line;
}

QPushButton* TraylessWindow::addButton(QVBoxLayout& layout, const MenuItem& item) {
    auto* button = new QPushButton(buttonText(item), content_);
    button->setCursor(Qt::PointingHandCursor);
    // Return chooses as well as the space bar.
    button->setAutoDefault(true);
    connect(button, &QPushButton::clicked, this, [item] { LinuxStatusItem::choose(item); });
    if (!item.keyEquivalent.empty()) {
        const QKeySequence keys(QLatin1String("Ctrl+") + QString::fromStdString(item.keyEquivalent));
        auto* shortcut = new QShortcut(keys, button);
        connect(shortcut, &QShortcut::activated, button, [button] { button->animateClick(); });
        auto* shown = new QLabel(keys.toString(QKeySequence::NativeText), button);
        shown->setObjectName(QStringLiteral("key"));
        shown->setAttribute(Qt::WA_TransparentForMouseEvents);
        auto* inside = new QHBoxLayout(button);
        inside->setContentsMargins(10, 0, 10, 0);
        inside->addStretch();
        inside->addWidget(shown);
    }
    layout.addWidget(button);
    return button;
}

void TraylessWindow::updateTitle(int index) {
    QWidget* const shown = titles_[static_cast<std::size_t>(index)];
    const MenuItem& item = statusItem_.items()[static_cast<std::size_t>(index)];
    if (auto* label = qobject_cast<QLabel*>(shown)) {
        label->setText(QString::fromStdString(item.title));
    } else if (auto* button = qobject_cast<QPushButton*>(shown)) {
        button->setText(buttonText(item));
    }
}

} // namespace velloway
