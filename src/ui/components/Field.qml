import QtQuick
import QtQuick.Controls.Basic
import Velloway

TextField {
    id: field

    /// What the field edits, unless it has a text of its own.
    property FieldText whole: null
    property bool awaitsText: false
    property real corner: 6
    property color outline: Theme.fieldOutline

    color: Theme.primary
    placeholderTextColor: Theme.tertiary
    selectionColor: Theme.faded(Theme.blue, 0.35)
    selectedTextColor: Theme.primary
    font.pixelSize: Theme.body
    leftPadding: 8
    rightPadding: 8
    topPadding: 0
    bottomPadding: 0
    implicitHeight: 26
    verticalAlignment: TextInput.AlignVCenter
    text: whole ? whole.shown : ""
    onTextEdited: if (whole) whole.edit(text)
    Keys.onPressed: event => {
        if (!whole)
            return
        if (event.matches(StandardKey.Paste)) {
            awaitsText = true
            whole.readClipboard()
            event.accepted = true
        } else if (whole.isShortened && selectedText) {
            const cuts = event.matches(StandardKey.Cut)
            event.accepted = cuts || event.matches(StandardKey.Copy)
            if (event.accepted)
                whole.copy(selectionStart, selectionEnd)
            if (cuts)
                replaceSelection("")
        }
    }
    Accessible.role: Accessible.EditableText
    Accessible.name: placeholderText

    function replaceSelection(by: string) {
        const start = selectionStart
        remove(start, selectionEnd)
        insert(start, by)
        whole.edit(text)
    }

    Connections {
        target: field.whole
        enabled: field.awaitsText
        function onArrived(text) {
            field.awaitsText = false
            field.replaceSelection(text)
        }
        function onLongTextArrived() {
            field.awaitsText = false
            field.cursorPosition = field.whole.insertArrived(field.selectionStart, field.selectionEnd)
        }
    }

    background: Rectangle {
        radius: field.corner
        color: Theme.controlBackground
        border.width: field.activeFocus ? 2 : 1
        border.color: field.activeFocus ? Theme.focusRing : field.outline
    }
}
