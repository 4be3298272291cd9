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
    activeFocusOnTab: true
    Accessible.role: Accessible.Grouping
    Keys.onPressed: event => {
        switch (event.key) {
        case Qt.Key_Up: event.accepted = scrollTo(contentY - 60); break
        case Qt.Key_Down: event.accepted = scrollTo(contentY + 60); break
        case Qt.Key_PageUp: event.accepted = scrollTo(contentY - height * 0.9); break
        case Qt.Key_PageDown: event.accepted = scrollTo(contentY + height * 0.9); break
        case Qt.Key_Home: event.accepted = scrollTo(0); break
        case Qt.Key_End: event.accepted = scrollTo(contentHeight); break
        }
    }
    boundsBehavior: Flickable.StopAtBounds
    ScrollBar.vertical: ThinScrollBar {}

    function scrollTo(y: real): bool {
        contentY = Math.max(0, Math.min(contentHeight - height, y))
        return true
    }

    FocusFollower { flickable: flick }
    ColumnLayout {
        id: page

        x: Math.max(20, (flick.width - width) / 2)
        y: 20
        width: Math.min(flick.width - 40, 720)
        spacing: 24
    }
}
