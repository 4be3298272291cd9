import QtQuick
import Velloway

/// The choice of the SIM that calls go out with, side by side.
Rectangle {
    id: picker

    required property CallsBridge bridge

    implicitWidth: 55
    implicitHeight: 20
    radius: 6
    color: Theme.hover
    activeFocusOnTab: true
    Accessible.role: Accessible.Grouping
    Accessible.name: "SIM"
    Keys.onLeftPressed: bridge.selectedSimSlot = 0
    Keys.onRightPressed: bridge.selectedSimSlot = 1

    FocusRing { control: null; visible: picker.activeFocus; radius: 8 }

    Row {
        anchors.fill: parent
        anchors.margins: 2
        Repeater {
            model: picker.bridge.simSegments
            Rectangle {
                id: segment

                required property CallsBridge bridge
                required property string title
                required property real simSlot
                readonly property bool current: simSlot === bridge.selectedSimSlot

                objectName: "segment" + simSlot
                width: parent ? parent.width / 2 : 0
                height: parent ? parent.height : 0
                radius: 4
                color: current ? Theme.button : "transparent"
                border.width: current ? 1 : 0
                border.color: Theme.fieldOutline
                Accessible.role: Accessible.RadioButton
                Accessible.name: title
                Accessible.checked: current
                Accessible.onPressAction: press()

                function press() { bridge.selectedSimSlot = simSlot }

                Text {
                    anchors.centerIn: parent
                    text: segment.title
                    color: Theme.primary
                    font.pixelSize: Theme.caption2
                    font.weight: segment.current ? Font.DemiBold : Font.Normal
                    Accessible.ignored: true
                }
                TapHandler { onTapped: segment.press() }
            }
        }
    }
}
