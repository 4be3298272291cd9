import QtQuick
import QtQuick.Controls.Basic
import Velloway

/// A choice out of a few, as a menu. `entries` are {title, value}.
ComboBox {
    id: picker

    property var entries: []
    property var selected
    property string name
    signal picked(var value)

    model: entries
    textRole: "title"
    valueRole: "value"
    currentIndex: {
        for (let i = 0; i < entries.length; ++i)
            if (entries[i].value === selected)
                return i
        return -1
    }
    implicitWidth: 120
    implicitHeight: 24
    leftPadding: 9
    rightPadding: 24
    font.pixelSize: Theme.callout
    Accessible.name: name
    onActivated: index => picked(entries[index].value)

    contentItem: Text {
        text: picker.displayText
        color: Theme.primary
        font: picker.font
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
        border.color: Theme.outline
        FocusRing { control: picker }
    }
    delegate: ItemDelegate {
        required property var modelData
        required property int index

        width: picker.width
        height: 26
        highlighted: picker.highlightedIndex === index
        contentItem: Text {
            text: modelData.title
            color: parent.highlighted ? Theme.white : Theme.primary
            font: picker.font
            elide: Text.ElideRight
            verticalAlignment: Text.AlignVCenter
        }
        background: Rectangle {
            radius: 4
            color: parent.highlighted ? Theme.blue : "transparent"
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
