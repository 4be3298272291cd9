import QtQuick
import QtQuick.Controls.Basic
import Velloway

ToolTip {
    id: tip

    delay: 600
    padding: 6
    contentItem: Label {
        text: tip.text
        font.pixelSize: Theme.caption
    }
    background: Rectangle {
        radius: 5
        color: Theme.panelOpaque
        border.color: Theme.outline
    }
}
