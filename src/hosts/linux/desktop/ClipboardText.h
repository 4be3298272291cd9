#pragma once

#include <QByteArrayView>
#include <QString>
#include <QStringConverter>

namespace velloway {

/// What the clipboard holds, as text. Bytes that are none in that encoding become replacement characters, also
/// those of a character that is cut off at the end. A byte order mark stays: here it is a character of the
/// text, which `QString::fromUtf8` would cut.
QString clipboardText(QByteArrayView bytes, QStringConverter::Encoding encoding = QStringConverter::Utf8);

} // namespace velloway
