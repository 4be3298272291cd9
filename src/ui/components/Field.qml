import QtQuick
import QtQuick.Controls.Basic
import Velloway

TextField {
    id: field

    property real corner: 6
    property color outline: Theme.fieldOutline

    color: Theme.primary
    placeholderTextColor: Theme.tertiary
    selectionColor: Theme.faded(Theme.blue, 0.35)
    selectedTextColor: Theme.primary
    font.pixelSize: Theme.body
    leftPadding: 8
    rightPadding: 8
    topPadding: 0
    bottomPadding: 0
    implicitHeight: 26
    verticalAlignment: TextInput.AlignVCenter
    Accessible.role: Accessible.EditableText
    Accessible.name: placeholderText

    background: Rectangle {
        radius: field.corner
        color: Theme.controlBackground
        border.width: field.activeFocus ? 2 : 1
        border.color: field.activeFocus ? Theme.focusRing : field.outline
    }
}
