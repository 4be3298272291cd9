import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Velloway

/// The right column of the SMS tab while a chat is open.
ColumnLayout {
    id: chat

    required property SmsBridge bridge

    spacing: 0

    function focusComposer() { composer.forceActiveFocus() }

    RowLayout {
        Layout.leftMargin: 14
        Layout.rightMargin: 14
        Layout.minimumHeight: 56
        spacing: 10
        Column {
            Layout.fillWidth: true
            spacing: 1
            Label {
                objectName: "chatName"
                width: parent.width
                text: chat.bridge.chat.name
                maximumLineCount: 1
                font.pixelSize: Theme.headline
                font.weight: Font.DemiBold
                elide: Text.ElideRight
            }
            Label {
                objectName: "chatAddress"
                visible: chat.bridge.chat.address !== ""
                width: parent.width
                text: chat.bridge.chat.address
                maximumLineCount: 1
                color: Theme.secondary
                font.pixelSize: Theme.caption
                elide: Text.ElideRight
            }
        }
        Label {
            objectName: "noSim"
            visible: !sims.visible
            text: SmsTexts.noSim
            color: Theme.secondary
            font.pixelSize: Theme.caption
        }
        Row {
            id: sims

            visible: chat.bridge.chat.carriers.length > 0
            spacing: 7
            Label {
                anchors.verticalCenter: parent.verticalCenter
                text: SmsTexts.simLabel
                color: Theme.secondary
                font.pixelSize: Theme.caption
            }
            MenuPicker {
                objectName: "simPicker"
                width: 120
                name: "SIM"
                titles: chat.bridge.chat.carriers
                values: chat.bridge.chat.simSlots
                selected: chat.bridge.selectedSimSlot
                onPicked: value => chat.bridge.selectedSimSlot = value
            }
        }
    }

    Separator { Layout.fillWidth: true }

    Rectangle {
        Layout.fillWidth: true
        Layout.fillHeight: true
        color: Theme.underPage

        Label {
            objectName: "newConversation"
            visible: list.count === 0
            anchors.centerIn: parent
            text: SmsTexts.newConversation
            color: Theme.secondary
        }
        RowList {
            id: list

            property int lastCount: -1
            /// Rows that come into being change the estimate of the whole height; until the user scrolls away, the end
            /// stays in sight all the same.
            property bool followsEnd: true
            property int shownChat: chat.bridge.shownChat

            objectName: "messages"
            anchors.fill: parent
            reuseItems: true
            cacheBuffer: 400
            header: Item { height: 8 }
            footer: Item { height: 8 }
            model: chat.bridge.bubbles
            ScrollBar.vertical: ThinScrollBar { onPressedChanged: if (pressed) list.followsEnd = false }
            Accessible.name: chat.bridge.chat.name
            delegate: Bubble { width: ListView.view ? ListView.view.width : 0 }

            onMovementStarted: followsEnd = false
            onMovementEnded: followsEnd = atYEnd
            onContentHeightChanged: if (followsEnd && !scroll.running) later(keepEnd)
            onScrolled: {
                scroll.stop()
                followsEnd = atYEnd
            }
            onShownChatChanged: {
                lastCount = -1
                later(toEnd)
            }
            onCountChanged: later(toEnd)
            Component.onCompleted: later(toEnd)

            /// Once, however often it is asked for, when control is back with the event loop.
            function later(step: var) {
                // qmllint disable type
                Qt.callLater(step) // The linter takes it for a value.
                // qmllint enable type
            }

            /// Unless the user has left it since.
            function keepEnd() {
                if (followsEnd)
                    positionViewAtEnd()
            }

            /// At once for another chat, animated when messages came or went.
            function toEnd() {
                const animated = lastCount >= 0 && lastCount !== count
                lastCount = count
                followsEnd = true
                scroll.stop()
                if (!animated) {
                    positionViewAtEnd()
                    return
                }
                const from = contentY
                positionViewAtEnd()
                scroll.from = Math.max(from, contentY - height)
                scroll.to = contentY
                contentY = scroll.from
                scroll.start()
            }
            NumberAnimation {
                id: scroll

                target: list
                property: "contentY"
                duration: 220
                easing.type: Easing.OutCubic
                onFinished: list.positionViewAtEnd()
            }
        }
    }

    Separator { Layout.fillWidth: true }

    RowLayout {
        Layout.margins: 10
        spacing: 8
        Field {
            id: composer

            objectName: "composer"
            Layout.fillWidth: true
            implicitHeight: 36
            corner: 18
            outline: Theme.faded(Theme.secondary, 0.2)
            leftPadding: 14
            rightPadding: lineBreaks.visible ? 34 : 14
            focus: true
            placeholderText: SmsTexts.composerPlaceholder
            whole: chat.bridge.chatText
            onAccepted: chat.bridge.sendChatMessage()
            // The field draws a line break as a blank.
            Symbol {
                id: lineBreaks

                objectName: "lineBreaks"
                visible: chat.bridge.chatText.hasLineBreaks
                anchors { right: parent.right; rightMargin: 14; verticalCenter: parent.verticalCenter }
                name: "return"
                size: 13
                tint: Theme.secondary
                Accessible.ignored: false
                Accessible.role: Accessible.Graphic
                Accessible.name: "The text has line breaks"
            }
        }
        PlainButton {
            objectName: "send"
            enabled: chat.bridge.canSend
            opacity: 1
            padding: 2
            symbol: SmsTexts.sendSymbol
            symbolSize: 26
            tint: enabled ? Theme.blueText : Theme.secondary
            Accessible.name: "Send"
            onClicked: chat.bridge.sendChatMessage()
        }
    }
}
