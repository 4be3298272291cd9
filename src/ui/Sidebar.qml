import QtQuick
import Velloway

FocusScope {
    id: sidebar

    required property var bridge
    property bool showLabels: true
    /// A row was chosen with the mouse.
    signal chosen()

    Rectangle {
        anchors.fill: parent
        color: Theme.sidebar
    }
    ListView {
        id: list

        objectName: "sidebar"
        anchors.fill: parent
        anchors.margins: 8
        anchors.topMargin: 12
        spacing: 2
        interactive: false
        activeFocusOnTab: true
        model: sidebar.bridge.tabs
        Accessible.role: Accessible.List
        Accessible.name: "Tabs"
        Keys.onUpPressed: choose(-1)
        Keys.onDownPressed: choose(1)

        function choose(step) {
            let row = 0
            for (let i = 0; i < count; ++i)
                if (model[i].index === sidebar.bridge.shown.selectedRow)
                    row = i + step
            if (row >= 0 && row < count)
                sidebar.bridge.fields.selectedTab = model[row].index
        }

        delegate: Rectangle {
            id: row

            required property var modelData
            readonly property bool current: sidebar.bridge.shown.selectedRow === modelData.index

            objectName: "tab" + modelData.index
            width: list.width
            height: 32
            radius: 7
            color: current ? Theme.blue : hover.hovered ? Theme.hover : "transparent"
            Accessible.role: Accessible.ListItem
            Accessible.name: modelData.title
            Accessible.selectable: true
            Accessible.selected: current
            Accessible.focusable: true
            Accessible.onPressAction: press()

            function press() {
                sidebar.bridge.fields.selectedTab = modelData.index
                sidebar.chosen()
            }

            Symbol {
                id: symbol

                x: sidebar.showLabels ? 10 : (row.width - width) / 2
                anchors.verticalCenter: parent.verticalCenter
                name: row.modelData.symbol
                size: 17
                tint: row.current ? Theme.white : Theme.blue
            }
            Text {
                objectName: "label"
                visible: sidebar.showLabels
                anchors { left: symbol.right; leftMargin: 9; verticalCenter: parent.verticalCenter }
                text: row.modelData.title
                color: row.current ? Theme.white : Theme.primary
                font.pixelSize: Theme.body
                Accessible.ignored: true
            }
            HoverHandler { id: hover }
            TapHandler { onTapped: row.press() }
            FocusRing { control: null; visible: row.current && list.activeFocus; radius: 9 }
        }
    }
    Separator {
        vertical: true
        anchors.right: parent.right
        height: parent.height
    }
}
