#include "hosts/linux/desktop/LinuxPasteboard.h"

#include "hosts/linux/desktop/ClipboardText.h"
#include "hosts/linux/desktop/DataControl.h"
#include "hosts/linux/desktop/SelectionReader.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <utility>

namespace velloway {

namespace {

/// Whether the toolkit's clipboard is the desktop's. Without the keyboard, Wayland neither takes a text nor
/// tells of the present one, and the toolkit reports neither.
bool isToolkitInTouch() {
    return !QGuiApplication::platformName().startsWith(QLatin1String("wayland")) ||
           QGuiApplication::focusWindow() != nullptr;
}

/// Most programs offer their text under this name too. Under any other the toolkit decodes it, and cuts a
/// leading byte order mark.
QString utf8Text() {
    return QStringLiteral("text/plain;charset=utf-8");
}

} // namespace

LinuxPasteboard::LinuxPasteboard() = default;
LinuxPasteboard::~LinuxPasteboard() = default;

DataControl* LinuxPasteboard::dataControl() const {
    if (!std::exchange(isSoughtFor_, true)) {
        dataControl_ = DataControl::connect();
    }
    return dataControl_ && dataControl_->isUsable() ? dataControl_.get() : nullptr;
}

void LinuxPasteboard::clearContents() {
    if (DataControl* control = dataControl()) {
        control->clear();
    } else if (isToolkitInTouch()) {
        QGuiApplication::clipboard()->clear();
    }
}

bool LinuxPasteboard::setString(std::string_view text) {
    if (DataControl* control = dataControl()) {
        return control->setText(text);
    }
    if (!isToolkitInTouch()) {
        return false;
    }
    QGuiApplication::clipboard()->setText(
        clipboardText(QByteArrayView(text.data(), static_cast<qsizetype>(text.size()))));
    return true;
}

void LinuxPasteboard::readString(Done done) {
    ask({QClipboard::Clipboard, std::move(done)});
}

void LinuxPasteboard::readSelection(Done done) {
    ask({QClipboard::Selection, std::move(done)});
}

void LinuxPasteboard::ask(Question question) {
    waiting_.push_back(std::move(question));
    if (waiting_.size() == 1) {
        answerNext();
    }
}

/// The text as the toolkit reads it: of this process, or where nothing else can read it.
std::optional<std::string> LinuxPasteboard::toolkitText(QClipboard::Mode of) const {
    if (dataControl() == nullptr && !isToolkitInTouch()) {
        return std::nullopt;
    }
    const QMimeData* contents = QGuiApplication::clipboard()->mimeData(of);
    if (contents != nullptr && contents->hasFormat(utf8Text())) {
        return clipboardText(contents->data(utf8Text())).toStdString();
    }
    // Not `hasText`, which takes a list of addresses for text as well.
    if (contents == nullptr || !contents->hasFormat(QStringLiteral("text/plain"))) {
        return std::nullopt;
    }
    return contents->text().toStdString();
}

void LinuxPasteboard::answerNext() {
    // What was copied in a window of this process is handed over by this thread, which must not wait for it.
    const QClipboard::Mode of = waiting_.front().of;
    const QClipboard& clipboard = *QGuiApplication::clipboard();
    const bool isOwn = of == QClipboard::Selection ? clipboard.ownsSelection() : clipboard.ownsClipboard();
    if (DataControl* control = isOwn ? nullptr : dataControl(); control && control->knows(of)) {
        control->read(of, [this](std::optional<std::string> text) { answer(std::move(text)); });
        return;
    }
    if (!isOwn && QGuiApplication::platformName() == QLatin1String("xcb")) {
        if (!selection_) {
            selection_ = SelectionReader::connect();
        }
        if (selection_) {
            selection_->read(of, [this](std::optional<std::string> text) { answer(std::move(text)); });
            return;
        }
    }
    answer(toolkitText(of));
}

void LinuxPasteboard::answer(std::optional<std::string> text) {
    const Done done = std::move(waiting_.front().done);
    // Until it returns, the place in front keeps what it asks for from being answered inside it.
    done(std::move(text));
    waiting_.pop_front();
    if (!waiting_.empty()) {
        answerNext();
    }
}

bool LinuxPasteboard::isReadable() const {
    return dataControl() != nullptr || isToolkitInTouch();
}

} // namespace velloway
