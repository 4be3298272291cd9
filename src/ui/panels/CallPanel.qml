import QtQuick
import QtQuick.Layouts
import Velloway

/// The floating panel of a ringing or a running call.
Item {
    id: root

    required property CallPanelBridge bridge
    readonly property bool ringing: bridge.panel.isRinging
    readonly property color accent: ringing ? Theme.greenText : Theme.blueText
    /// Set by the window: without a compositor nothing can shine through.
    property bool translucent: true

    width: 350
    height: 80

    Rectangle {
        anchors.fill: parent
        visible: !root.translucent
        color: Theme.panelOpaque
    }
    Rectangle {
        anchors.fill: parent
        radius: 12
        color: root.translucent ? Theme.panel : Theme.panelOpaque
        border.width: 1
        border.color: Theme.outline
    }

    RowLayout {
        anchors { fill: parent; leftMargin: 16; rightMargin: 16 }
        spacing: 15

        Rectangle {
            implicitWidth: 45
            implicitHeight: 45
            radius: 22.5
            color: Theme.faded(root.accent, 0.2)
            Symbol {
                anchors.centerIn: parent
                name: root.bridge.panel.iconSymbol
                size: 22
                tint: root.accent
            }
        }
        Column {
            Layout.fillWidth: true
            spacing: 2
            Label {
                objectName: "firstLine"
                width: parent.width
                text: root.bridge.panel.firstLine
                font.pixelSize: 14
                font.bold: true
                elide: Text.ElideRight
                maximumLineCount: 1
            }
            Label {
                objectName: "secondLine"
                visible: root.bridge.panel.secondLine !== ""
                width: parent.width
                text: root.bridge.panel.secondLine
                maximumLineCount: 1
                color: Theme.secondary
                font.pixelSize: 11
                elide: Text.ElideRight
            }
            Label {
                objectName: "lastLine"
                text: root.bridge.panel.lastLine
                color: Theme.tertiary
                font.pixelSize: 10
            }
        }
        Row {
            spacing: 12
            CircleButton {
                objectName: "left"
                fill: root.ringing ? Theme.red : root.bridge.panel.isMuted ? Theme.blue : Theme.faded(Theme.gray, 0.3)
                tint: !root.ringing && !root.bridge.panel.isMuted ? Theme.primary : Theme.white
                symbol: root.bridge.panel.leftSymbol
                tip: root.bridge.panel.leftTooltip
                name: root.bridge.panel.leftName
                onClicked: root.bridge.pressLeft()
            }
            CircleButton {
                objectName: "right"
                fill: root.ringing ? Theme.green : Theme.red
                symbol: root.bridge.panel.rightSymbol
                tip: root.bridge.panel.rightTooltip
                name: root.bridge.panel.rightName
                onClicked: root.bridge.pressRight()
            }
        }
    }
}
