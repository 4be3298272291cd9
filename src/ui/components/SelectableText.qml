import QtQuick
import Velloway

/// Text that can be selected and copied.
TextEdit {
    id: content

    /// Only the head of the text is shown, with an ellipsis.
    property bool isCut: false
    /// Copying a selection that goes to the end of a cut text: the rest belongs to it.
    signal copyFrom(int start)

    readOnly: true
    textFormat: TextEdit.PlainText
    wrapMode: TextEdit.Wrap
    color: Theme.primary
    selectionColor: Theme.faded(Theme.blue, 0.35)
    selectedTextColor: color
    font.pixelSize: Theme.body
    Keys.onPressed: event => {
        if (event.matches(StandardKey.Copy))
            event.accepted = copySelection()
    }

    /// False when nothing is selected.
    function copySelection(): bool {
        if (selectionStart === selectionEnd)
            return false
        if (isCut && selectionEnd >= length - 1)
            copyFrom(selectionStart)
        else
            copy()
        return true
    }

    // Its own press would take the selection away.
    TapHandler {
        acceptedButtons: Qt.RightButton
        gesturePolicy: TapHandler.WithinBounds
        onTapped: point => menu.open(point.position)
    }
    CopyMenu {
        id: menu

        onChosen: {
            // Nothing selected stands for everything.
            if (!content.copySelection()) {
                content.selectAll()
                content.copySelection()
            }
        }
    }
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
