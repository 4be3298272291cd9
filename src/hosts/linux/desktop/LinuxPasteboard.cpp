#include "hosts/linux/desktop/LinuxPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

namespace velloway {

void LinuxPasteboard::clearContents() {
    QGuiApplication::clipboard()->clear();
}

void LinuxPasteboard::setString(std::string_view text) {
    QGuiApplication::clipboard()->setText(QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())));
}

std::optional<std::string> LinuxPasteboard::string() const {
    const QMimeData* contents = QGuiApplication::clipboard()->mimeData();
    // Not `hasText`, which takes a list of addresses for text as well.
    if (contents == nullptr || !contents->hasFormat(QStringLiteral("text/plain"))) {
        return std::nullopt;
    }
    return contents->text().toStdString();
}

} // namespace velloway
