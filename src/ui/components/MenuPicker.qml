import QtQuick
import QtQuick.Controls.Basic
import Velloway

/// A choice out of a few, as a menu. Each title stands for the value in the same place.
ComboBox {
    id: picker

    required property list<string> titles
    required property list<real> values
    property real selected
    property string name
    signal picked(real value)

    model: titles
    currentIndex: {
        for (let i = 0; i < values.length; ++i)
            if (values[i] === selected)
                return i
        return -1
    }
    implicitWidth: 120
    implicitHeight: 24
    leftPadding: 9
    rightPadding: 24
    font.pixelSize: Theme.callout
    Accessible.name: name
    onActivated: index => picked(values[index])

    contentItem: Text {
        text: picker.displayText
        maximumLineCount: 1
        color: Theme.primary
        font: picker.font
        textFormat: Text.PlainText
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
    }
    indicator: Symbol {
        x: picker.width - width - 8
        y: (picker.height - height) / 2
        name: "chevron.down"
        size: 10
        tint: Theme.secondary
    }
    background: Rectangle {
        radius: 6
        color: picker.down ? Qt.darker(Theme.button, 1.1) : Theme.button
        border.color: Theme.fieldOutline
        FocusRing { control: picker }
    }
    delegate: ItemDelegate {
        id: entry

        required property string modelData

        width: ListView.view ? ListView.view.width : 0
        height: 26
        highlighted: ListView.isCurrentItem
        contentItem: Text {
            text: entry.modelData
            maximumLineCount: 1
            textFormat: Text.PlainText
            color: entry.highlighted ? Theme.white : Theme.primary
            font.pixelSize: Theme.callout
            elide: Text.ElideRight
            verticalAlignment: Text.AlignVCenter
        }
        background: Rectangle {
            radius: 4
            color: entry.highlighted ? Theme.blue : "transparent"
        }
    }
    popup: Popup {
        y: picker.height + 2
        width: picker.width
        padding: 4
        implicitHeight: contentItem.implicitHeight + 8
        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: picker.popup.visible ? picker.delegateModel : null
            currentIndex: picker.highlightedIndex
        }
        background: Rectangle {
            radius: 8
            color: Theme.panelOpaque
            border.color: Theme.outline
        }
    }
}
