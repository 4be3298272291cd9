import QtQuick
import QtQuick.Templates as T
import Velloway

/// Shows which control the keyboard works on.
Rectangle {
    objectName: "focusRing"
    property T.Control control: parent as T.Control

    anchors.fill: parent
    anchors.margins: -2
    radius: Theme.radius + 2
    color: "transparent"
    border.width: 2
    border.color: Theme.focusRing
    visible: control && control.visualFocus
}
