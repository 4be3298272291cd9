import QtQuick
import QtQuick.Layouts
import Velloway

/// The block above a list: title, what it is for, the one action, and a way to clear the list.
Rectangle {
    id: header

    property string title
    property string description
    property string clearTitle
    property bool showsClear: false
    property string actionTitle
    property string actionSymbol
    signal clear()
    signal action()

    implicitHeight: column.implicitHeight + 2 * Theme.padding
    color: Theme.window

    ColumnLayout {
        id: column

        x: (parent.width - width) / 2
        y: Theme.padding
        width: Math.min(parent.width, Theme.pageWidth) - 2 * Theme.padding
        spacing: 8
        RowLayout {
            Layout.minimumHeight: 24
            Label {
                text: header.title
                font.pixelSize: Theme.title2
                font.bold: true
                Layout.fillWidth: true
                Accessible.role: Accessible.Heading
            }
            PlainButton {
                objectName: "clearHistory"
                visible: header.showsClear
                text: header.clearTitle
                onClicked: header.clear()
            }
        }
        Label {
            text: header.description
            color: Theme.secondary
            font.pixelSize: Theme.subheadline
            wrapMode: Text.Wrap
            Layout.fillWidth: true
        }
        PushButton {
            objectName: "action"
            focus: true
            Layout.topMargin: 4
            prominent: true
            controlSize: "large"
            text: header.actionTitle
            symbol: header.actionSymbol
            onClicked: header.action()
        }
    }
}
