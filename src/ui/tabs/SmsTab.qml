import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Velloway

FocusScope {
    id: tab

    required property var bridge
    readonly property var texts: bridge.texts.sms
    readonly property var header: bridge.shown.chatHeader

    focus: true

    RowLayout {
        anchors.fill: parent
        spacing: 0

        ThreadList {
            bridge: tab.bridge
            Layout.preferredWidth: 260
            Layout.minimumWidth: 260
            Layout.maximumWidth: 260
            Layout.fillHeight: true
        }
        Separator { vertical: true; Layout.fillHeight: true }

        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            EmptyState {
                objectName: "noChat"
                visible: !tab.header
                anchors.centerIn: parent
                width: Math.min(300, parent.width - 40)
                symbol: tab.texts.noChatSymbol
                title: tab.texts.noChat
            }
            Loader {
                objectName: "chatLoader"
                anchors.fill: parent
                active: tab.header ? true : false
                sourceComponent: Chat {
                    bridge: tab.bridge
                    header: tab.header
                }
            }
        }
    }
}
