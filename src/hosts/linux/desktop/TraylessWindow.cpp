#include "hosts/linux/desktop/TraylessWindow.h"

#include "hosts/linux/desktop/LinuxStatusItem.h"
#include "hosts/linux/desktop/StatusIcons.h"
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

namespace velloway {

namespace {

constexpr int windowWidth = 300;
constexpr int iconSize = 28;

/// All colours come by it: a style sheet puts the palette of its widget back whenever it changes, and does not
/// hand it on. %1 is the softer one of rows that only inform, %2 that of a row under the pointer, %3 that of
/// the lines between, %4 that of texts, %5 that of the window; %6 and %7 are the ground of a pressed row and
/// what stands on it.
const char* const sheet = R"(
    QWidget#traylessWindow { background: %5; }
    QLabel#header { font-size: 17px; font-weight: 600; color: %4; }
    QLabel#line, QLabel#key, QPushButton:disabled { color: %1; }
    QFrame#separator { background: %3; border: none; }
    QPushButton { text-align: left; padding: 7px 10px; border: 1px solid transparent; border-radius: 6px;
                  background: transparent; color: %4; }
    QPushButton:hover { background: %2; }
    QPushButton:focus { border-color: %6; }
    QPushButton:pressed { background: %6; color: %7; }
)";

/// `share` of the text's colour on the window's.
QString mixed(const QPalette& palette, float share) {
    const QColor text = palette.color(QPalette::WindowText);
    const QColor window = palette.color(QPalette::Window);
    const auto mix = [share](float one, float other) { return share * one + (1 - share) * other; };
    return QColor::fromRgbF(mix(text.redF(), window.redF()), mix(text.greenF(), window.greenF()),
                            mix(text.blueF(), window.blueF()))
        .name();
}

/// The colours of the views, as light or dark as the desktop.
QPalette themed(QPalette palette) {
    const bool isDark = palette.color(QPalette::Window).lightness() < 128;
    const auto set = [&](QPalette::ColorRole role, const PaletteColor& color) {
        palette.setColor(role, QColor::fromRgba(isDark ? color.dark : color.light));
    };
    set(QPalette::Window, paletteColor("window"));
    set(QPalette::WindowText, paletteColor("primary"));
    set(QPalette::Highlight, paletteColor("blue"));
    set(QPalette::HighlightedText, paletteColor("white"));
    return palette;
}

QString buttonText(const MenuItem& item) {
    return QString::fromStdString(item.title).replace('&', QLatin1String("&&"));
}

} // namespace

TraylessWindow::TraylessWindow(LinuxStatusItem& statusItem) : statusItem_(statusItem) {
    setWindowTitle(QGuiApplication::applicationDisplayName());
    setObjectName(QStringLiteral("traylessWindow"));
    setAttribute(Qt::WA_StyledBackground);
    applyPalette();
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    connect(&statusItem_, &LinuxStatusItem::menuChanged, this, &TraylessWindow::rebuild);
    connect(&statusItem_, &LinuxStatusItem::itemTitleChanged, this, &TraylessWindow::updateTitle);
    qGuiApp->installEventFilter(this);
    rebuild();
}

void TraylessWindow::bringForward() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    bringToUser(*windowHandle());
}

bool TraylessWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qGuiApp && event->type() == QEvent::ApplicationPaletteChange) {
        applyPalette();
        rebuild();
    }
    return false;
}

void TraylessWindow::applyPalette() {
    const QPalette colours = themed(QGuiApplication::palette());
    const auto named = [&](QPalette::ColorRole role) { return colours.color(role).name(); };
    setStyleSheet(QString::fromLatin1(sheet).arg(
        mixed(colours, 0.6F), mixed(colours, 0.08F), mixed(colours, 0.15F), named(QPalette::WindowText),
        named(QPalette::Window), named(QPalette::Highlight), named(QPalette::HighlightedText)));
}

void TraylessWindow::rebuild() {
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
}

void TraylessWindow::addHeader(QVBoxLayout& layout, const MenuItem& item) {
    auto* row = new QHBoxLayout;
    row->setContentsMargins(10, 0, 10, 0);
    row->setSpacing(10);
    auto* icon = new QLabel(content_);
    const StatusImage image{.kind = StatusImage::Kind::asset, .name = "StatusIcon"};
    icon->setPixmap(statusIcon(image, themed(QGuiApplication::palette()).color(QPalette::Highlight))
                        .pixmap(iconSize, iconSize));
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
