import QtQuick
import QtQuick.Layouts
import Velloway

FocusScope {
    id: tab

    required property SmsBridge bridge

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
                visible: !tab.bridge.chat.isOpen
                anchors.centerIn: parent
                width: Math.min(300, parent.width - 40)
                symbol: SmsTexts.noChatSymbol
                title: SmsTexts.noChat
            }
            Loader {
                readonly property bool isOpen: tab.bridge.chat.isOpen

                objectName: "chatLoader"
                anchors.fill: parent
                onIsOpenChanged: load()
                Component.onCompleted: load()

                function load() {
                    if (isOpen)
                        setSource("Chat.qml", { bridge: tab.bridge })
                    else
                        source = ""
                }
            }
        }
    }
}
