import QtQuick
import QtQuick.Controls.Basic
import Velloway

/// A filled circle with a symbol on it.
AbstractButton {
    id: button

    property string symbol
    property string tip
    property string name
    property color fill: Theme.gray
    property color tint: Theme.white
    property real diameter: 32
    property real symbolSize: 16

    implicitWidth: diameter
    implicitHeight: diameter
    opacity: enabled ? 1 : 0.4
    Accessible.role: Accessible.Button
    Accessible.name: name || tip
    Accessible.description: enabled ? "" : "Unavailable"
    Accessible.onPressAction: if (enabled) clicked()
    Keys.onReturnPressed: clicked()

    background: Rectangle {
        radius: width / 2
        color: button.down ? Qt.darker(button.fill, 1.2) : button.hovered ? Qt.lighter(button.fill, 1.08) : button.fill
        FocusRing { control: button; radius: width / 2 }
    }
    contentItem: Item {
        Symbol {
            anchors.centerIn: parent
            name: button.symbol
            size: button.symbolSize
            tint: button.tint
        }
    }
    Tip { visible: button.hovered && button.tip && button.Window.window !== null; text: button.tip }
}
