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
        }
        Item { Layout.fillWidth: true; visible: row.title !== "" && !holder.fills }
        RowLayout {
            id: holder

            property bool fills: children.length === 1 && children[0].Layout.fillWidth
            spacing: 8
            Layout.fillWidth: fills
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
