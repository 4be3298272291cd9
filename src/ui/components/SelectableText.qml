import QtQuick
import Velloway

/// Text that can be selected and copied.
TextEdit {
    /// Only the head of the text is shown, with an ellipsis.
    property bool isCut: false
    /// Copying a selection that goes to the end of a cut text: the rest belongs to it.
    signal copyFrom(int start)

    readOnly: true
    selectByMouse: true
    textFormat: TextEdit.PlainText
    wrapMode: TextEdit.Wrap
    color: Theme.primary
    selectionColor: Theme.faded(Theme.blue, 0.35)
    selectedTextColor: color
    font.pixelSize: Theme.body
    Keys.onPressed: event => {
        if (isCut && event.matches(StandardKey.Copy) && selectionStart < selectionEnd && selectionEnd >= length - 1) {
            copyFrom(selectionStart)
            event.accepted = true
        }
    }
    Accessible.role: Accessible.StaticText
    Accessible.name: text
}
