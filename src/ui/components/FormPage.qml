import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Velloway

/// A scrolling form of sections.
Flickable {
    id: flick

    default property alias sections: page.data

    contentHeight: page.implicitHeight + 40
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    ScrollBar.vertical: ThinScrollBar {}

    ColumnLayout {
        id: page

        x: Math.max(20, (flick.width - width) / 2)
        y: 20
        width: Math.min(flick.width - 40, 720)
        spacing: 24
    }
}
