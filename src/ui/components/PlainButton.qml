import QtQuick
import QtQuick.Controls.Basic
import Velloway

/// A button without a frame: a symbol, a text, or both.
AbstractButton {
    id: button

    property string symbol
    property string tip
    property color tint: Theme.blueText
    property real symbolSize: 16
    property real textSize: Theme.caption

    padding: 4
    opacity: enabled ? 1 : 0.4
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.Button
    Accessible.name: text || tip
    Accessible.description: enabled ? "" : "Unavailable"
    Accessible.onPressAction: if (enabled) clicked()
    Keys.onReturnPressed: clicked()

    background: Rectangle {
        radius: 6
        color: button.down ? Theme.pressed : button.hovered ? Theme.hover : "transparent"
        FocusRing { control: button; radius: 7 }
    }
    contentItem: Row {
        spacing: 5
        Symbol {
            visible: button.symbol
            anchors.verticalCenter: parent.verticalCenter
            name: button.symbol
            size: button.symbolSize
            tint: button.tint
        }
        Text {
            visible: button.text
            anchors.verticalCenter: parent.verticalCenter
            text: button.text
            color: button.tint
            font.pixelSize: button.textSize
            Accessible.ignored: true
        }
    }
    Tip { visible: button.hovered && button.tip && button.Window.window !== null; text: button.tip }
}
