import QtQuick
import QtQuick.Layouts
import Velloway

FocusScope {
    id: tab

    required property SmsBridge bridge

    focus: true

    function focusSearch() { threads.focusSearch() }

    Component.onCompleted: {
        if (bridge.chat.isOpen)
            chatLoader.focus = true
        else
            threads.preferSearch()
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0

        ThreadList {
            id: threads

            bridge: tab.bridge
            onOpened: chatLoader.focusComposer()
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
                id: chatLoader

                readonly property bool isOpen: tab.bridge.chat.isOpen

                objectName: "chatLoader"
                anchors.fill: parent
                onIsOpenChanged: load()
                Component.onCompleted: load()

                /// A chat that is yet to be loaded gives the keyboard to its composer by itself.
                function focusComposer() {
                    forceActiveFocus()
                    const chat = item as Chat
                    if (chat)
                        chat.focusComposer()
                }
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
