import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Velloway

FocusScope {
    id: tab

    required property FileDropBridge bridge

    focus: true

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        ListHeader {
            Layout.fillWidth: true
            title: FileDropTexts.title
            description: FileDropTexts.description
            clearTitle: FileDropTexts.clearHistory
            showsClear: tab.bridge.showsClear
            actionTitle: FileDropTexts.send
            actionSymbol: FileDropTexts.sendSymbol
            onClear: tab.bridge.clearFileTransfers()
            onAction: tab.bridge.selectFileAndSend()
        }
        Separator { Layout.fillWidth: true }
        RowList {
            id: list

            objectName: "transfers"
            Layout.fillWidth: true
            Layout.fillHeight: true
            reuseItems: true
            topMargin: 8
            bottomMargin: 8
            model: tab.bridge.transfers
            Accessible.name: FileDropTexts.title
            delegate: Item {
                id: row

                required property FileDropBridge bridge
                required property string rowId
                required property string symbol
                required property string colorRole
                required property string fileName
                required property bool isCompleted
                required property real progress
                required property string percentage
                required property string detail
                required property bool showsReveal

                objectName: "transfer"
                // A row that waits for its next use must not be there for a screen reader.
                ListView.onPooled: visible = false
                ListView.onReused: visible = true
                x: ListView.view ? (ListView.view.width - width) / 2 : 0
                width: ListView.view ? Math.min(ListView.view.width, Theme.pageWidth) : 0
                height: 54
                Accessible.role: Accessible.ListItem
                Accessible.name: fileName + ", " + (isCompleted ? detail : percentage)

                Rectangle {
                    anchors { fill: parent; leftMargin: 10; rightMargin: 10 }
                    radius: Theme.radius
                    color: hover.hovered ? Theme.hover : "transparent"
                }
                Symbol {
                    id: direction

                    x: 22
                    anchors.verticalCenter: parent.verticalCenter
                    name: row.symbol
                    size: 21
                    tint: Theme.named(row.colorRole)
                }
                Column {
                    anchors { left: direction.right; leftMargin: 14; right: reveal.left; rightMargin: 10; verticalCenter: parent.verticalCenter }
                    spacing: 4
                    Label {
                        width: parent.width
                        text: row.fileName
                        maximumLineCount: 1
                        font.weight: Font.Medium
                        elide: Text.ElideMiddle
                    }
                    Label {
                        visible: row.isCompleted
                        width: parent.width
                        text: row.detail
                        color: Theme.secondary
                        font.pixelSize: 11
                        elide: Text.ElideRight
                    }
                    Row {
                        visible: !row.isCompleted
                        spacing: 8
                        height: 12
                        Rectangle {
                            objectName: "progress"
                            width: 100
                            height: 3
                            radius: 1.5
                            anchors.verticalCenter: parent.verticalCenter
                            color: Theme.pressed
                            Accessible.role: Accessible.ProgressBar
                            Accessible.name: row.percentage
                            Rectangle {
                                width: parent.width * Math.max(0, Math.min(1, row.progress))
                                height: parent.height
                                radius: 1.5
                                color: Theme.blue
                            }
                        }
                        Label {
                            anchors.verticalCenter: parent.verticalCenter
                            text: row.percentage
                            color: Theme.secondary
                            font.pixelSize: 9
                        }
                    }
                }
                PlainButton {
                    id: reveal

                    objectName: "reveal"
                    visible: row.showsReveal
                    width: visible ? implicitWidth : 0
                    anchors { right: parent.right; rightMargin: 20; verticalCenter: parent.verticalCenter }
                    symbol: FileDropTexts.revealSymbol
                    tip: FileDropTexts.revealTooltip
                    Accessible.name: tip + ": " + row.fileName
                    tint: Theme.secondary
                    onClicked: row.bridge.revealFile(row.rowId)
                }
                HoverHandler { id: hover }
            }
        }
    }
}
