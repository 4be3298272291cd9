import QtQuick
import QtQuick.Controls.Basic
import Velloway

/// A button with a frame; `prominent` fills it with the tint.
AbstractButton {
    id: button

    property string symbol
    property string tip
    property bool prominent: false
    property bool alignLeft: false
    /// "small", "regular" or "large".
    property string controlSize: "regular"
    readonly property color foreground: prominent ? Theme.white : Theme.primary

    implicitHeight: controlSize === "large" ? 34 : controlSize === "small" ? 22 : 28
    implicitWidth: Math.max(implicitHeight, contentItem.implicitWidth + leftPadding + rightPadding)
    leftPadding: controlSize === "small" ? 9 : 13
    rightPadding: leftPadding
    opacity: enabled ? 1 : 0.45
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.Button
    Accessible.name: text || tip
    Accessible.description: enabled ? "" : "Unavailable"
    Accessible.onPressAction: if (enabled) clicked()
    Keys.onReturnPressed: clicked()

    component Face: Item {
        id: face

        required property bool alignLeft
        default property alias parts: row.data

        implicitWidth: row.implicitWidth
        implicitHeight: row.implicitHeight
        Row {
            id: row

            spacing: 7
            x: face.alignLeft ? 0 : (face.width - width) / 2
            anchors.verticalCenter: parent.verticalCenter
        }
    }

    background: Rectangle {
        radius: button.controlSize === "small" ? 5 : 7
        color: button.prominent ? (button.down ? Qt.darker(Theme.blue, 1.2) : button.hovered ? Qt.lighter(Theme.blue, 1.06) : Theme.blue)
                                : (button.down ? Qt.darker(Theme.button, 1.12) : button.hovered ? Qt.darker(Theme.button, 1.04) : Theme.button)
        border.width: button.prominent ? 0 : 1
        border.color: Theme.outline
        FocusRing { control: button; radius: parent.radius + 2 }
    }
    contentItem: Face {
        alignLeft: button.alignLeft
        Symbol {
            visible: button.symbol
            anchors.verticalCenter: parent.verticalCenter
            name: button.symbol
            size: button.controlSize === "large" ? 17 : button.controlSize === "small" ? 12 : 15
            tint: button.foreground
        }
        Text {
            visible: button.text
            anchors.verticalCenter: parent.verticalCenter
            text: button.text
            color: button.foreground
            font.pixelSize: button.controlSize === "small" ? Theme.caption : Theme.body
            font.weight: button.prominent ? Font.Medium : Font.Normal
            Accessible.ignored: true
        }
    }
    Tip { visible: button.hovered && button.tip && button.Window.window !== null; text: button.tip }
}
