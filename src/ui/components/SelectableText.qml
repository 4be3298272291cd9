import QtQuick
import Velloway

/// Text that can be selected and copied.
TextEdit {
    readOnly: true
    selectByMouse: true
    textFormat: TextEdit.PlainText
    wrapMode: TextEdit.Wrap
    color: Theme.primary
    selectionColor: Theme.faded(Theme.blue, 0.35)
    selectedTextColor: color
    font.pixelSize: Theme.body
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
