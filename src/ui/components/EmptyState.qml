import QtQuick
import Velloway

/// What a list shows in place of rows.
Column {
    property string symbol
    property real symbolSize: 48
    property real symbolOpacity: 0.3
    property string title
    property bool headline: false
    property string description

    spacing: 12
    Symbol {
        anchors.horizontalCenter: parent.horizontalCenter
        name: parent.symbol
        size: parent.symbolSize
        tint: Theme.secondary
        opacity: parent.symbolOpacity
    }
    Label {
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(implicitWidth, parent.width)
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        text: parent.title
        color: parent.headline ? Theme.primary : Theme.secondary
        font.pixelSize: parent.headline ? Theme.headline : Theme.callout
        font.weight: parent.headline ? Font.DemiBold : Font.Normal
    }
    Label {
        visible: parent.description
        anchors.horizontalCenter: parent.horizontalCenter
        width: Math.min(implicitWidth, parent.width)
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.Wrap
        text: parent.description
        color: Theme.secondary
        font.pixelSize: Theme.callout
    }
}
