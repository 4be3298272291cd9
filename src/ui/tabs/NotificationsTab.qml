import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Velloway

FocusScope {
    id: tab

    required property NotificationsBridge bridge

    focus: true

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            EmptyState {
                objectName: "empty"
                visible: list.count === 0
                anchors.centerIn: parent
                width: parent.width - 40
                symbol: NotificationsTexts.emptySymbol
                symbolOpacity: 0.6
                headline: true
                title: NotificationsTexts.emptyTitle
                description: NotificationsTexts.emptyDescription
            }
            RowList {
                id: list

                objectName: "notifications"
                anchors.fill: parent
                focus: true
                topMargin: 8
                bottomMargin: 8
                model: tab.bridge.rows
                Accessible.name: "Notifications"
                delegate: Item {
                    id: row

                    required property NotificationsBridge bridge
                    required property string rowId
                    required property string letter
                    required property string app
                    required property string time
                    required property string title
                    required property string body
                    required property bool isReplying

                    objectName: "notification"

                    function focusReply() { reply.forceActiveFocus(Qt.TabFocusReason) }

                    x: ListView.view ? (ListView.view.width - width) / 2 : 0
                    width: ListView.view ? Math.min(ListView.view.width, Theme.pageWidth) : 0
                    height: column.height + 22
                    Accessible.role: Accessible.ListItem
                    Accessible.name: app + (title ? ", " + title : "") + (body ? ", " + body : "")

                    Rectangle {
                        id: icon

                        x: 20
                        y: 11
                        width: 32
                        height: 32
                        radius: 6
                        color: Theme.faded(Theme.tint, 0.12)
                        Text {
                            anchors.centerIn: parent
                            text: row.letter
                            color: Theme.tint
                            font.pixelSize: 14
                            font.weight: Font.DemiBold
                            Accessible.ignored: true
                        }
                    }
                    Column {
                        id: column

                        anchors { left: icon.right; leftMargin: 12; right: parent.right; rightMargin: 20 }
                        y: 10
                        spacing: 3
                        Item {
                            width: parent.width
                            height: 15
                            Label {
                                anchors { left: parent.left; right: when.left; rightMargin: 8 }
                                text: row.app
                                maximumLineCount: 1
                                color: Theme.secondary
                                font.pixelSize: Theme.caption
                                font.weight: Font.DemiBold
                                elide: Text.ElideRight
                            }
                            Label {
                                id: when

                                anchors.right: parent.right
                                text: row.time
                                color: Theme.tertiary
                                font.pixelSize: Theme.caption2
                            }
                        }
                        Label {
                            visible: row.title !== ""
                            width: parent.width
                            objectName: "title"
                            text: row.title
                            font.pixelSize: Theme.callout
                            font.weight: Font.Medium
                            elide: Text.ElideRight
                            maximumLineCount: 1
                        }
                        Label {
                            visible: row.body !== ""
                            width: parent.width
                            objectName: "body"
                            text: row.body
                            color: Theme.secondary
                            font.pixelSize: Theme.caption
                            wrapMode: Text.Wrap
                            elide: Text.ElideRight
                            maximumLineCount: 2
                            horizontalAlignment: Text.AlignLeft
                        }
                        PlainButton {
                            id: reply

                            objectName: "reply"
                            visible: !row.isReplying
                            x: -4
                            text: NotificationsTexts.reply
                            Accessible.name: NotificationsTexts.reply + ": " + (row.title || row.app)
                            tint: Theme.tint
                            onClicked: row.bridge.openReply(row.rowId)
                        }
                        Loader {
                            readonly property bool isOpen: row.isReplying

                            visible: isOpen
                            width: parent.width
                            onIsOpenChanged: load()
                            Component.onCompleted: load()

                            /// The keyboard goes back to where it came from.
                            function close() {
                                const hadFocus = activeFocus
                                source = ""
                                if (hadFocus) {
                                    // qmllint disable type
                                    Qt.callLater(row.focusReply) // The linter takes it for a value.
                                    // qmllint enable type
                                }
                            }
                            function load() {
                                if (isOpen)
                                    setSource("ReplyBox.qml", { bridge: row.bridge, rowId: row.rowId })
                                else
                                    close()
                            }
                        }
                    }
                    Separator {
                        anchors { left: column.left; right: column.right; bottom: parent.bottom }
                    }
                }
            }
        }

        Separator { Layout.fillWidth: true }
        RowLayout {
            /// The rows above stand in the middle of a wide window.
            readonly property real beside: Math.max(0, (tab.width - Theme.pageWidth) / 2)

            Layout.leftMargin: beside + 16
            Layout.rightMargin: beside + 12
            // A layout becomes as high as it may.
            Layout.maximumHeight: 34
            Label {
                objectName: "count"
                text: tab.bridge.count
                color: Theme.secondary
                font.pixelSize: Theme.caption
                Layout.fillWidth: true
            }
            PlainButton {
                objectName: "clearAll"
                text: NotificationsTexts.clearAll
                tint: Theme.redText
                enabled: tab.bridge.canClear
                onClicked: tab.bridge.clearNotifications()
            }
        }
    }
}
