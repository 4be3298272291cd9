import QtQuick
import QtQuick.Layouts
import Velloway

/// A label on the left, its value on the right.
Item {
    id: row

    property string title
    property string symbol
    property color symbolTint: Theme.primary
    property bool last: false
    /// The value takes all the room beside the label.
    property bool wide: false
    default property alias value: holder.data

    width: parent ? parent.width : 0
    implicitHeight: Math.max(42, holder.implicitHeight + 20)
    RowLayout {
        anchors.fill: parent
        anchors.leftMargin: 12
        anchors.rightMargin: 12
        spacing: 8
        Symbol {
            visible: row.symbol
            name: row.symbol
            tint: row.symbolTint
            size: 16
        }
        Label {
            visible: row.title
            text: row.title
            Layout.alignment: Qt.AlignVCenter
            Layout.preferredWidth: row.wide ? 96 : -1
        }
        Item { Layout.fillWidth: true; visible: row.title !== "" && !row.wide }
        RowLayout {
            id: holder

            spacing: 8
            Layout.fillWidth: row.wide
            Layout.alignment: Qt.AlignVCenter
        }
    }
    Separator {
        visible: !row.last
        x: 12
        width: parent.width - 12
        anchors.bottom: parent.bottom
    }
}
