#include "hosts/linux/notifications/ReplyPanel.h"

#include "hosts/linux/notifications/ElidedLabel.h"
#include "hosts/linux/windows/WindowSpaces.h"

#include <QHBoxLayout>
#include <QLineEdit>

namespace velloway {

ReplyPanel::ReplyPanel(const Prompt& prompt) {
    setObjectName(QStringLiteral("ReplyPanel"));
    setWindowTitle(prompt.title);
    setAccessibleName(prompt.title);

    auto* title = new ElidedLabel(prompt.title, 1, this);
    QFont bold = font();
    bold.setPixelSize(14);
    bold.setWeight(QFont::DemiBold);
    title->setFont(bold);
    auto* header = new QHBoxLayout;
    header->setSpacing(8);
    header->addWidget(title, 1);
    header->addWidget(makeCloseButton(tr("Cancel")), 0, Qt::AlignTop);
    content()->addLayout(header);

    if (!prompt.text.isEmpty()) {
        auto* text = new ElidedLabel(prompt.text, 2, this);
        text->setForegroundRole(QPalette::PlaceholderText);
        content()->addWidget(text);
    }
    row_ = new ReplyRow(
        prompt.field, [this](const QString& text) { emit replied(text); }, this);
    content()->addWidget(row_);
    setFocusProxy(row_);
    fitHeight();
    QWindow& window = nativeWindow();
    // Tools vanish while their program is not the active one on some desktops. The toolkit looks at this only
    // when the window is there.
    setAttribute(Qt::WA_X11NetWmWindowTypeDialog);
    joinAllSpaces(window);
}

void ReplyPanel::takeKeyboard() {
    raise();
    activateForUser(nativeWindow());
    row_->input()->setFocus(Qt::ActiveWindowFocusReason);
}

} // namespace velloway
