import QtQuick
import QtQuick.Window
import Velloway

/// The main window's content: the sidebar and the chosen tab beside it.
FocusScope {
    id: root

    required property var bridge
    readonly property bool showLabels: bridge.showsLabels(width)
    readonly property string content: bridge.shown.tabContent

    onContentChanged: if (!sidebar.activeFocus) detail.forceActiveFocus()

    Rectangle {
        anchors.fill: parent
        color: Theme.window
    }

    Sidebar {
        id: sidebar

        width: 200
        height: parent.height
        bridge: root.bridge
        showLabels: root.showLabels
        onChosen: detail.forceActiveFocus()
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
            function load() {
                const files = {
                    calls: "CallsTab", sendSms: "SmsTab", fileDrop: "FileDropTab", notifications: "NotificationsTab",
                    remoteControl: "RemoteTab", clipboard: "ClipboardTab", settings: "SettingsTab", info: "InfoTab"
                }
                setSource("tabs/" + files[root.content] + ".qml", { bridge: root.bridge })
            }
            Connections {
                target: root
                function onContentChanged() { loader.load() }
            }
        }
    }
}
