#include "hosts/linux/notifications/NotificationBanner.h"

#include "hosts/linux/notifications/ElidedLabel.h"
#include "hosts/linux/windows/WindowSpaces.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLineEdit>

#include <chrono>

namespace velloway {

namespace {

constexpr std::chrono::seconds toRead(6);
constexpr std::chrono::seconds toReadAndAnswer(12);

} // namespace

NotificationBanner::NotificationBanner(const Content& shown) {
    setObjectName(QStringLiteral("NotificationBanner"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    setWindowTitle(shown.title);
    setAccessibleName(shown.title);

    content()->addWidget(makeHeader(shown.title));
    addLine(shown.subtitle, 1, QFont::DemiBold, QPalette::WindowText);
    addLine(shown.body, 4, QFont::Normal, QPalette::PlaceholderText);
    if (shown.reply) {
        row_ = new ReplyRow(
            *shown.reply, [this](const QString& text) { emit replied(text); }, this);
        content()->addWidget(row_);
        row_->input()->installEventFilter(this);
    }
    fitHeight();
    floatOverEverything(nativeWindow());
    if (row_) {
        acceptKeyboardOnClick(nativeWindow());
    }

    setLifetime(shown.reply ? toReadAndAnswer : toRead);
    connect(&life_, &QTimer::timeout, this, &NotificationBanner::timeOut);
}

QWidget* NotificationBanner::makeHeader(const QString& title) {
    auto* header = new QWidget(this);
    auto* text = new ElidedLabel(title, 1, header);
    QFont bold = font();
    bold.setPixelSize(14);
    bold.setWeight(QFont::DemiBold);
    text->setFont(bold);
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(text, 1);
    row->addWidget(makeCloseButton(tr("Close")), 0, Qt::AlignTop);
    return header;
}

void NotificationBanner::addLine(const QString& text, int maxLines, QFont::Weight weight,
                                 QPalette::ColorRole color) {
    if (text.isEmpty()) {
        return;
    }
    auto* label = new ElidedLabel(text, maxLines, this);
    QFont weighted = font();
    weighted.setWeight(weight);
    label->setFont(weighted);
    label->setForegroundRole(color);
    content()->addWidget(label);
}

void NotificationBanner::showEvent(QShowEvent* event) {
    FloatingPanel::showEvent(event);
    life_.start();
}

bool NotificationBanner::eventFilter(QObject* watched, QEvent* event) {
    // No window manager does this for a window that it does not look after.
    if (event->type() == QEvent::MouseButtonPress && !isActiveWindow()) {
        requestKeyboard(nativeWindow());
    }
    return FloatingPanel::eventFilter(watched, event);
}

bool NotificationBanner::isInUse() const {
    return underMouse() || (row_ && (row_->input()->hasFocus() || !row_->input()->text().isEmpty()));
}

void NotificationBanner::timeOut() {
    if (!isInUse()) {
        life_.stop();
        emit expired();
    }
}

} // namespace velloway
