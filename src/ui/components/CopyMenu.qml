import QtQuick
import QtQuick.Controls.Basic
import Velloway

/// Offers to copy from the text under the pointer.
Loader {
    id: holder

    property point place
    signal chosen()

    component CopyChoices: Menu {
        id: menu

        signal chosen()

        width: 120
        padding: 4

        MenuItem {
            id: entry

            implicitHeight: 26
            text: "Copy"
            onTriggered: menu.chosen()
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

    function open(at: point) {
        place = at
        active = true
    }

    active: false
    sourceComponent: CopyChoices {}
    onLoaded: {
        const menu = item as Menu
        menu.x = place.x
        menu.y = place.y
        menu.open()
    }

    Connections {
        target: holder.item
        function onClosed() { holder.active = false }
        function onChosen() { holder.chosen() }
    }
}
