import QtQuick
import QtQuick.Controls.Basic
import Velloway

ScrollBar {
    id: bar

    padding: 2
    minimumSize: 0.06
    contentItem: Rectangle {
        implicitWidth: 6
        implicitHeight: 6
        radius: 3
        color: Theme.secondary
        opacity: bar.pressed ? 0.8 : bar.hovered ? 0.6 : bar.active ? 0.4 : 0
        Behavior on opacity { NumberAnimation { duration: 150 } }
    }
}
