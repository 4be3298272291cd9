import QtQuick
import QtQuick.Controls.Basic
import Velloway

/// Offers to copy from the text under the pointer.
Loader {
    id: holder

    property point place
    signal chosen()

    function open(at: point) {
        place = at
        active = true
    }

    active: false
    sourceComponent: Menu {
        id: menu

        x: holder.place.x
        y: holder.place.y
        width: 120
        padding: 4
        Component.onCompleted: open()
        onClosed: holder.active = false

        MenuItem {
            id: entry

            implicitHeight: 26
            text: "Copy"
            onTriggered: holder.chosen()
            contentItem: Label {
                text: entry.text
                color: entry.highlighted ? Theme.white : Theme.primary
                verticalAlignment: Text.AlignVCenter
            }
            background: Rectangle {
                radius: 4
                color: entry.highlighted ? Theme.blue : "transparent"
            }
        }
        background: Rectangle {
            radius: 8
            color: Theme.panelOpaque
            border.color: Theme.outline
        }
    }
}
