import QtQuick

/// Scrolls to the control that the keyboard has come to.
Item {
    id: follower

    required property Flickable flickable
    readonly property Item focused: Window.activeFocusItem

    onFocusedChanged: {
        for (let item = focused; item; item = item.parent) {
            if (item === flickable.contentItem) {
                reveal()
                return
            }
        }
    }

    function reveal() {
        // What is larger than the view may be under the pointer already.
        if (focused === flickable.contentItem || focused.height > flickable.height)
            return
        const space = 8
        const top = focused.mapToItem(flickable.contentItem, 0, 0).y
        const first = flickable.originY - flickable.topMargin
        const last = Math.max(first, flickable.originY + flickable.contentHeight + flickable.bottomMargin - flickable.height)
        if (top - space < flickable.contentY)
            flickable.contentY = Math.max(first, top - space)
        else if (top + focused.height + space > flickable.contentY + flickable.height)
            flickable.contentY = Math.min(last, top + focused.height + space - flickable.height)
    }
}
