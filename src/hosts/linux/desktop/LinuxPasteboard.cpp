#include "hosts/linux/desktop/LinuxPasteboard.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QStringConverter>

namespace velloway {

void LinuxPasteboard::clearContents() {
    QGuiApplication::clipboard()->clear();
}

void LinuxPasteboard::setString(std::string_view text) {
    // `QString::fromUtf8` would cut a byte order mark, which here is a character of the text.
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    QGuiApplication::clipboard()->setText(
        decoder(QByteArrayView(text.data(), static_cast<qsizetype>(text.size()))));
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
