#include "hosts/linux/desktop/ClipboardText.h"

namespace velloway {

QString clipboardText(QByteArrayView bytes, QStringConverter::Encoding encoding) {
    using Flag = QStringDecoder::Flag;
    // Without a state, nothing waits for the rest of a character.
    QStringDecoder decoder(encoding, Flag::ConvertInitialBom | Flag::Stateless);
    return decoder(bytes);
}

} // namespace velloway
