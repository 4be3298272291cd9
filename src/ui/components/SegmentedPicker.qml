import QtQuick
import Velloway

/// A choice out of a few, side by side. `segments` are {title, value}.
Rectangle {
    id: picker

    property var segments: []
    property var selected
    property string name
    signal picked(var value)

    implicitWidth: 55
    implicitHeight: 20
    radius: 6
    color: Theme.hover
    activeFocusOnTab: true
    Accessible.role: Accessible.Grouping
    Accessible.name: name

    Row {
        anchors.fill: parent
        anchors.margins: 2
        Repeater {
            model: picker.segments
            Rectangle {
                required property var modelData
                readonly property bool current: modelData.value === picker.selected

                objectName: "segment" + modelData.value
                width: parent.width / picker.segments.length
                height: parent.height
                radius: 4
                color: current ? Theme.button : "transparent"
                border.width: current ? 1 : 0
                border.color: Theme.separator
                Accessible.role: Accessible.RadioButton
                Accessible.name: modelData.title
                Accessible.checked: current
                Accessible.onPressAction: picker.picked(modelData.value)
                Text {
                    anchors.centerIn: parent
                    text: parent.modelData.title
                    color: Theme.primary
                    font.pixelSize: Theme.caption2
                    font.weight: parent.current ? Font.DemiBold : Font.Normal
                    Accessible.ignored: true
                }
                TapHandler { onTapped: picker.picked(parent.modelData.value) }
            }
        }
    }
}
