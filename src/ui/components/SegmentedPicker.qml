import QtQuick
import Velloway

/// A choice out of a few, side by side. Each title stands for the value in the same place.
Rectangle {
    id: picker

    required property list<string> titles
    required property list<real> values
    property real selected
    property string name
    signal picked(real value)

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
            model: picker.titles
            Rectangle {
                id: segment

                required property string modelData
                required property int index
                readonly property real value: picker.values[index]
                readonly property bool current: value === picker.selected

                objectName: "segment" + value
                width: parent.width / picker.titles.length
                height: parent.height
                radius: 4
                color: current ? Theme.button : "transparent"
                border.width: current ? 1 : 0
                border.color: Theme.separator
                Accessible.role: Accessible.RadioButton
                Accessible.name: modelData
                Accessible.checked: current
                Accessible.onPressAction: picker.picked(value)
                Text {
                    anchors.centerIn: parent
                    text: segment.modelData
                    color: Theme.primary
                    font.pixelSize: Theme.caption2
                    font.weight: segment.current ? Font.DemiBold : Font.Normal
                    Accessible.ignored: true
                }
                TapHandler { onTapped: picker.picked(segment.value) }
            }
        }
    }
}
