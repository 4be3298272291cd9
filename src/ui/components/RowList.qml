import QtQuick
import QtQuick.Controls.Basic
import Velloway

/// A list for mouse and keyboard. With `hasCurrentRow` the arrow and page keys, Home and End go from row to row,
/// otherwise they scroll.
ListView {
    id: rows

    property bool hasCurrentRow: false
    /// The keyboard scrolled.
    signal scrolled()
    /// Up was pressed on the first row.
    signal leftAtTop()

    clip: true
    activeFocusOnTab: true
    boundsBehavior: Flickable.StopAtBounds
    highlightMoveDuration: 0
    keyNavigationEnabled: false
    // A row that became current would take the keyboard from the text in it that is being used.
    currentIndex: hasCurrentRow ? 0 : -1
    ScrollBar.vertical: ThinScrollBar {}
    Accessible.role: Accessible.List
    Keys.onPressed: event => {
        if (event.modifiers === Qt.NoModifier || event.modifiers === Qt.KeypadModifier)
            event.accepted = hasCurrentRow ? goBy(event.key) : scrollBy(event.key)
    }

    FocusFollower { flickable: rows }

    function goBy(key: int): bool {
        const page = Math.max(1, Math.floor(height / Math.max(1, currentItem ? currentItem.height : height)) - 1)
        switch (key) {
        case Qt.Key_Up:
            if (currentIndex <= 0)
                leftAtTop()
            return goTo(currentIndex - 1)
        case Qt.Key_Down: return goTo(currentIndex + 1)
        case Qt.Key_PageUp: return goTo(currentIndex - page)
        case Qt.Key_PageDown: return goTo(currentIndex + page)
        case Qt.Key_Home: return goTo(0)
        case Qt.Key_End: return goTo(count - 1)
        default: return false
        }
    }

    function goTo(row: int): bool {
        if (count > 0) {
            currentIndex = Math.max(0, Math.min(count - 1, row))
            positionViewAtIndex(currentIndex, ListView.Contain)
        }
        return true
    }

    function scrollBy(key: int): bool {
        switch (key) {
        case Qt.Key_Up: return scrollTo(contentY - 60)
        case Qt.Key_Down: return scrollTo(contentY + 60)
        case Qt.Key_PageUp: return scrollTo(contentY - height * 0.9)
        case Qt.Key_PageDown: return scrollTo(contentY + height * 0.9)
        case Qt.Key_Home:
            positionViewAtBeginning()
            return scrollTo(originY - topMargin)
        case Qt.Key_End:
            positionViewAtEnd()
            return scrollTo(originY + contentHeight + bottomMargin - height)
        default: return false
        }
    }

    function scrollTo(y: real): bool {
        const first = originY - topMargin
        const last = Math.max(first, originY + contentHeight + bottomMargin - height)
        contentY = Math.max(first, Math.min(last, y))
        scrolled()
        return true
    }
}
