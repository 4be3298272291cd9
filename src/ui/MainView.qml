import QtQuick
import QtQuick.Window
import Velloway

/// The main window's content: the sidebar and the chosen tab beside it.
FocusScope {
    id: root

    required property MainBridge bridge
    property real sidebarWidth: 200

    /// Follows the pointer from 200 points on; far below that the sidebar goes away.
    function dragDivider(x: real) {
        bridge.showsSidebar = x >= 100
        if (bridge.showsSidebar)
            sidebarWidth = Math.max(200, Math.min(320, x))
    }

    onWidthChanged: bridge.setWidth(width)
    Component.onCompleted: detail.forceActiveFocus()
    Keys.onPressed: event => {
        const sms = event.matches(StandardKey.Find) ? loader.item as SmsTab : null
        if (sms)
            sms.focusSearch()
        event.accepted = sms !== null
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.window
    }

    Sidebar {
        id: sidebar

        visible: root.bridge.showsSidebar
        width: visible ? root.sidebarWidth : 0
        height: parent.height
        bridge: root.bridge
    }

    FocusScope {
        id: detail

        objectName: "detail"
        anchors { left: sidebar.right; right: parent.right; top: parent.top; bottom: parent.bottom }
        focus: true

        Loader {
            id: loader

            objectName: "tabLoader"
            anchors.fill: parent
            focus: true
            Component.onCompleted: load()
            function load() { setSource("tabs/" + root.bridge.tabFile, { bridge: root.bridge.tab }) }
            Connections {
                target: root.bridge
                function onTabChosen() { detail.forceActiveFocus() }
                function onTabChanged() {
                    if (!sidebar.activeFocus || !sidebar.visible)
                        detail.forceActiveFocus()
                    loader.load()
                }
            }
        }
    }

    MouseArea {
        objectName: "divider"
        x: sidebar.width - (sidebar.visible ? 3 : 0)
        width: 6
        height: parent.height
        cursorShape: Qt.SplitHCursor
        onPositionChanged: event => { if (pressed) root.dragDivider(mapToItem(root, event.x, 0).x) }
    }
}
