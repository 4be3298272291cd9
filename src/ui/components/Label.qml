import QtQuick
import Velloway

Text {
    color: Theme.primary
    font.pixelSize: Theme.body
    textFormat: Text.PlainText
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
