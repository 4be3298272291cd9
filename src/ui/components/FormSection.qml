import QtQuick
import QtQuick.Layouts
import Velloway

/// One group of a form: a heading, rows on a rounded ground with lines between them, a note below.
ColumnLayout {
    id: section

    property string title
    property string footer
    default property alias rows: body.data

    spacing: 7
    Label {
        visible: section.title
        text: section.title
        font.weight: Font.DemiBold
        Layout.leftMargin: 10
        Accessible.role: Accessible.Heading
    }
    Rectangle {
        Layout.fillWidth: true
        implicitHeight: body.implicitHeight
        radius: 10
        color: Theme.controlBackground
        border.width: height > 0 ? 1 : 0
        border.color: Theme.separator
        Column {
            id: body

            width: parent.width
        }
    }
    Label {
        visible: section.footer
        text: section.footer
        color: Theme.secondary
        font.pixelSize: Theme.caption
        wrapMode: Text.Wrap
        Layout.fillWidth: true
        Layout.leftMargin: 10
        Layout.rightMargin: 10
    }
}
