import QtQuick
import Velloway

FocusScope {
    id: sidebar

    required property MainBridge bridge

    Rectangle {
        anchors.fill: parent
        color: Theme.sidebar
    }
    // Made in order, unlike the rows of a list view, as a screen reader reads them so.
    FocusScope {
        id: list

        objectName: "sidebar"
        anchors.fill: parent
        anchors.margins: 8
        anchors.topMargin: 12
        activeFocusOnTab: true
        Accessible.role: Accessible.List
        Accessible.name: "Tabs"
        Keys.onUpPressed: choose(-1)
        Keys.onDownPressed: choose(1)
        // The tab's shortcuts hold here too, as far as the list does not use their keys itself.
        Keys.onPressed: event => event.accepted = sidebar.bridge.tab.pressShortcut(event.key, event.modifiers, event.isAutoRepeat)

        function choose(step: int) {
            sidebar.bridge.select(sidebar.bridge.selectedRow < 0 ? 0 : sidebar.bridge.selectedRow + step)
        }

        Column {
            width: parent.width
            spacing: 2
            Repeater {
                model: sidebar.bridge.tabs
                Rectangle {
                    id: row

                    required property MainBridge bridge
                    required property int index
                    required property int tabIndex
                    required property string title
                    required property string symbol
                    readonly property bool current: bridge.selectedRow === index

                    objectName: "tab" + tabIndex
                    // The row has the keyboard, and with it a screen reader's attention.
                    focus: current
                    width: parent ? parent.width : 0
                    height: 32
                    radius: 7
                    color: current ? Theme.blue : hover.hovered ? Theme.hover : "transparent"
                    Accessible.role: Accessible.ListItem
                    Accessible.name: title
                    Accessible.selectable: true
                    Accessible.selected: current
                    Accessible.focusable: true
                    Accessible.onPressAction: press()

                    function press() {
                        bridge.select(index)
                        bridge.tabChosen()
                    }

                    Symbol {
                        id: picture

                        x: row.bridge.showsLabels ? 10 : (row.width - width) / 2
                        anchors.verticalCenter: parent.verticalCenter
                        name: row.symbol
                        size: 17
                        tint: row.current ? Theme.white : Theme.blueText
                    }
                    Text {
                        objectName: "label"
                        visible: row.bridge.showsLabels
                        anchors { left: picture.right; leftMargin: 9; verticalCenter: parent.verticalCenter }
                        text: row.title
                        color: row.current ? Theme.white : Theme.primary
                        font.pixelSize: Theme.body
                        Accessible.ignored: true
                    }
                    HoverHandler { id: hover }
                    TapHandler { onTapped: row.press() }
                    FocusRing { control: null; visible: row.activeFocus; radius: 9 }
                }
            }
        }
    }
    Separator {
        vertical: true
        anchors.right: parent.right
        height: parent.height
    }
}
