import QtQuick
import Velloway

/// Shows which control the keyboard works on.
Rectangle {
    property Item control: parent

    anchors.fill: parent
    anchors.margins: -2
    radius: Theme.radius + 2
    color: "transparent"
    border.width: 2
    border.color: Theme.faded(Theme.blue, 0.6)
    visible: control && control.visualFocus === true
}
