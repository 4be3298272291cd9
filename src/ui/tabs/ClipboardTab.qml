import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Velloway

FocusScope {
    id: tab

    required property ClipboardBridge bridge

    focus: true

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        ListHeader {
            Layout.fillWidth: true
            title: ClipboardTexts.title
            description: ClipboardTexts.description
            clearTitle: ClipboardTexts.clearHistory
            showsClear: tab.bridge.showsClear
            actionTitle: ClipboardTexts.send
            actionSymbol: ClipboardTexts.sendSymbol
            onClear: tab.bridge.clearClipboard()
            onAction: tab.bridge.sendCurrentClipboard()
        }
        Separator { Layout.fillWidth: true }
        Item {
            Layout.fillWidth: true
            Layout.fillHeight: true

            EmptyState {
                objectName: "empty"
                visible: list.count === 0
                anchors.centerIn: parent
                width: parent.width - 40
                symbol: ClipboardTexts.emptySymbol
                title: ClipboardTexts.empty
            }
            RowList {
                id: list

                objectName: "clipboardTexts"
                anchors.fill: parent
                topMargin: 8
                bottomMargin: 8
                model: tab.bridge.rows
                Accessible.name: ClipboardTexts.title
                delegate: Item {
                    id: row

                    required property ClipboardBridge bridge
                    required property string rowId
                    required property string text
                    required property bool isCut
                    required property string date

                    objectName: "clipboardRow"
                    x: ListView.view ? (ListView.view.width - width) / 2 : 0
                    width: ListView.view ? Math.min(ListView.view.width, Theme.pageWidth) : 0
                    height: column.height + 22
                    Accessible.role: Accessible.ListItem
                    Accessible.name: text

                    Symbol {
                        id: lines

                        x: 22
                        y: 13
                        name: ClipboardTexts.rowSymbol
                        size: 17
                        tint: Theme.blueText
                    }
                    Column {
                        id: column

                        anchors { left: lines.right; leftMargin: 14; right: copy.left; rightMargin: 12 }
                        y: 11
                        spacing: 4
                        // Ten lines show. A text of ordinary length is whole; copying reaches the rest of a longer one.
                        Item {
                            width: parent.width
                            height: Math.min(content.contentHeight, Math.ceil(metrics.lineSpacing) * 10)
                            clip: true
                            FontMetrics { id: metrics; font: content.font }
                            SelectableText {
                                id: content

                                objectName: "clipboardText"
                                width: parent.width
                                text: row.text
                                isCut: row.isCut
                                onCopyFrom: start => row.bridge.copyFrom(row.rowId, start)
                            }
                        }
                        Label {
                            text: row.date
                            color: Theme.secondary
                            font.pixelSize: 10
                        }
                    }
                    PlainButton {
                        id: copy

                        objectName: "copy"
                        anchors { right: parent.right; rightMargin: 20 }
                        y: 8
                        symbol: ClipboardTexts.copySymbol
                        tip: ClipboardTexts.copyTooltip
                        Accessible.name: tip + ": " + row.text.slice(0, 40)
                        tint: Theme.secondary
                        onClicked: row.bridge.copyToClipboard(row.rowId)
                    }
                    Separator {
                        x: 22
                        width: parent.width - 44
                        anchors.bottom: parent.bottom
                    }
                }
            }
        }
    }
}
