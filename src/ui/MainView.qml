import QtQuick
import QtQuick.Window
import Velloway

/// The main window's content: the sidebar and the chosen tab beside it.
FocusScope {
    id: root

    required property MainBridge bridge

    onWidthChanged: bridge.setWidth(width)
    Component.onCompleted: detail.forceActiveFocus()

    Rectangle {
        anchors.fill: parent
        color: Theme.window
    }

    Sidebar {
        id: sidebar

        width: 200
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
                    if (!sidebar.activeFocus)
                        detail.forceActiveFocus()
                    loader.load()
                }
            }
        }
    }
}
