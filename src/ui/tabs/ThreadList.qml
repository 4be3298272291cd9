import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Velloway

/// The list column of the SMS tab: search, new message, threads.
Item {
    id: column

    required property SmsBridge bridge
    /// The user opened a chat.
    signal opened()

    function focusSearch() { search.forceActiveFocus() }
    /// Without taking the keyboard from the sidebar.
    function preferSearch() { search.focus = true }
    function enterRows() {
        if (fresh.visible)
            fresh.forceActiveFocus(Qt.TabFocusReason)
        else
            list.forceActiveFocus(Qt.TabFocusReason)
    }

    /// The row above the threads that starts a chat with what was typed.
    component NewMessage: AbstractButton {
        id: fresh

        required property SmsBridge bridge
        readonly property string recipient: bridge.list.newMessageTo

        objectName: "newMessage"
        visible: recipient !== ""
        width: parent ? parent.width : 0
        height: visible ? 52 : 0
        Accessible.role: Accessible.Button
        Accessible.name: SmsTexts.newMessageCaption + " " + recipient
        Accessible.onPressAction: if (enabled) clicked()
        Keys.onReturnPressed: clicked()
        Keys.onEnterPressed: clicked()
        background: Rectangle {
            FocusRing { control: fresh; anchors.margins: 0; radius: Theme.radius }
            radius: Theme.radius
            color: fresh.down ? Theme.pressed : fresh.hovered ? Theme.hover : "transparent"
        }
        contentItem: Item {
            Symbol {
                x: 3
                anchors.verticalCenter: parent.verticalCenter
                name: SmsTexts.newMessageSymbol
                size: 34
                tint: Theme.blueText
            }
            Column {
                x: 48
                width: parent.width - x
                anchors.verticalCenter: parent.verticalCenter
                Label {
                    text: SmsTexts.newMessageCaption
                    color: Theme.secondary
                    font.pixelSize: Theme.caption
                }
                Label {
                    width: parent.width
                    text: fresh.recipient
                    maximumLineCount: 1
                    font.weight: Font.Medium
                    elide: Text.ElideRight
                }
            }
        }
    }

    component Thread: Rectangle {
        id: row

        required property SmsBridge bridge
        required property int index
        required property string initials
        required property string name
        required property string date
        required property string preview
        required property bool isActive

        objectName: "thread"
        // A row that waits for its next use must not be there for a screen reader.
        ListView.onPooled: visible = false
        ListView.onReused: visible = true
        width: ListView.view ? ListView.view.width - 16 : 0
        height: 52
        radius: Theme.radius
        color: isActive ? Theme.faded(Theme.blue, 0.15) : hover.hovered ? Theme.hover : "transparent"
        Accessible.role: Accessible.ListItem
        Accessible.name: name + (preview ? ", " + preview : "")
        Accessible.selectable: true
        Accessible.selected: isActive
        Accessible.onPressAction: press()

        signal opened()

        function press() {
            bridge.openThread(index)
            opened()
        }

        FocusRing { control: null; visible: row.ListView.isCurrentItem && row.ListView.view.activeFocus; anchors.margins: 0; radius: Theme.radius }

        Avatar {
            id: avatar

            x: 8
            anchors.verticalCenter: parent.verticalCenter
            initials: row.initials
        }
        Label {
            anchors { left: avatar.right; leftMargin: 10; right: when.left; rightMargin: 6 }
            y: 9
            text: row.name
            font.weight: Font.DemiBold
            elide: Text.ElideRight
            maximumLineCount: 1
        }
        Label {
            id: when

            anchors { right: parent.right; rightMargin: 8 }
            y: 12
            text: row.date
            color: Theme.secondary
            font.pixelSize: 10
        }
        Label {
            anchors { left: avatar.right; leftMargin: 10; right: parent.right; rightMargin: 8 }
            y: 28
            text: row.preview
            color: Theme.secondary
            font.pixelSize: 11
            elide: Text.ElideRight
            maximumLineCount: 1
            horizontalAlignment: Text.AlignLeft
        }
        HoverHandler { id: hover }
        TapHandler { onTapped: row.press() }
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 8

        RowLayout {
            Layout.margins: 12
            Layout.bottomMargin: 0
            Label {
                text: SmsTexts.title
                font.pixelSize: Theme.title2
                font.bold: true
                Layout.fillWidth: true
                Accessible.role: Accessible.Heading
            }
            PlainButton {
                objectName: "refresh"
                symbol: SmsTexts.refreshSymbol
                Accessible.name: "Refresh"
                onClicked: column.bridge.refreshSmsHistory()
            }
        }

        Rectangle {
            Layout.fillWidth: true
            Layout.leftMargin: 12
            Layout.rightMargin: 12
            implicitHeight: 30
            radius: Theme.radius
            color: Theme.fieldBackground
            border.width: search.activeFocus ? 2 : 1
            border.color: search.activeFocus ? Theme.focusRing : Theme.fieldOutline
            Symbol {
                x: 9
                anchors.verticalCenter: parent.verticalCenter
                name: SmsTexts.searchSymbol
                size: 14
                tint: Theme.secondary
            }
            Field {
                id: search

                objectName: "search"
                anchors { fill: parent; leftMargin: 25; rightMargin: clear.visible ? 26 : 2 }
                background: null
                leftPadding: 3
                rightPadding: 4
                topPadding: 4
                bottomPadding: 4
                placeholderText: SmsTexts.searchPlaceholder
                whole: column.bridge.contactQuery
                Keys.onDownPressed: column.enterRows()
                Keys.onEscapePressed: column.enterRows()
            }
            PlainButton {
                id: clear

                objectName: "clearSearch"
                visible: column.bridge.list.showsClearButton
                anchors { right: parent.right; rightMargin: 4; verticalCenter: parent.verticalCenter }
                symbol: SmsTexts.clearSymbol
                symbolSize: 14
                tint: Theme.secondary
                Accessible.name: "Clear search"
                onClicked: column.bridge.clearSearch()
            }
        }

        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            EmptyState {
                objectName: "noMessages"
                visible: column.bridge.list.isEmpty
                anchors.centerIn: parent
                width: parent.width - 20
                symbol: SmsTexts.emptySymbol
                symbolSize: 32
                symbolOpacity: 0.4
                title: SmsTexts.empty
            }

            // Above the list and not in it, where many threads would push it out of sight.
            NewMessage {
                id: fresh

                bridge: column.bridge
                x: 8
                width: parent.width - 16
                onClicked: {
                    bridge.startNewMessage()
                    column.opened()
                }
                Keys.onUpPressed: column.focusSearch()
                Keys.onDownPressed: list.forceActiveFocus(Qt.TabFocusReason)
            }
            RowList {
                id: list

                objectName: "threads"
                visible: !column.bridge.list.isEmpty
                anchors { fill: parent; topMargin: fresh.height }
                hasCurrentRow: true
                leftMargin: 8
                rightMargin: 8
                reuseItems: true
                model: column.bridge.threads
                onLeftAtTop: fresh.visible ? fresh.forceActiveFocus(Qt.TabFocusReason) : column.focusSearch()
                Accessible.name: SmsTexts.title
                // A cast to a type of this file gives null in Qt 6.4.
                // qmllint disable type
                Keys.onReturnPressed: if (currentItem) currentItem.press()
                Keys.onEnterPressed: if (currentItem) currentItem.press()
                // qmllint enable type

                // The linter of Qt 6.4 does not look out of a component.
                // qmllint disable unqualified
                delegate: Thread { onOpened: column.opened() }
                // qmllint enable unqualified
            }
        }
    }
}
