import QtQuick
import Velloway

Text {
    color: Theme.primary
    font.pixelSize: Theme.body
    textFormat: Text.PlainText
    // Rows line up, whichever way their texts run.
    horizontalAlignment: Text.AlignLeft
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
