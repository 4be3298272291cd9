import QtQuick
import QtQuick.Controls.Basic
import Velloway

Switch {
    id: toggle

    property string name

    padding: 0
    implicitWidth: 38
    implicitHeight: 22
    Accessible.role: Accessible.CheckBox
    Accessible.name: name
    indicator: Rectangle {
        implicitWidth: 38
        implicitHeight: 22
        radius: 11
        color: toggle.checked ? Theme.blue : Theme.pressed
        Behavior on color { ColorAnimation { duration: 120 } }
        Rectangle {
            x: toggle.checked ? parent.width - width - 2 : 2
            y: 2
            width: 18
            height: 18
            radius: 9
            color: "white"
            border.color: "#18000000"
            Behavior on x { NumberAnimation { duration: 120; easing.type: Easing.OutCubic } }
        }
        FocusRing { control: toggle; radius: 13 }
    }
    contentItem: Item {}
}
