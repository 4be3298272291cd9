import QtQuick
import QtQuick.Controls.Basic
import Velloway

TextField {
    id: field

    /// What the field edits.
    required property FieldText whole
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
    text: whole.shown
    onTextEdited: whole.edit(text)
    Keys.onPressed: event => {
        if (event.matches(StandardKey.Paste)) {
            const ofSelection = event.key === Qt.Key_Insert && (event.modifiers & Qt.ControlModifier)
            if (ofSelection)
                whole.pasteSelection(field)
            else
                whole.pasteClipboard(field)
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

    // By itself the toolkit waits for the program in which the text is selected.
    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.MiddleButton
        onPressed: event => {
            field.forceActiveFocus(Qt.MouseFocusReason)
            field.cursorPosition = field.positionAt(event.x, event.y)
        }
        onClicked: field.whole.pasteSelection(field)
    }

    background: Rectangle {
        radius: field.corner
        color: Theme.controlBackground
        border.width: field.activeFocus ? 2 : 1
        border.color: field.activeFocus ? Theme.focusRing : field.outline
    }
}
