import QtQuick
import Velloway

/// A text that leads out of the program.
Text {
    id: link

    signal clicked()

    padding: 2
    color: tap.pressed ? Theme.primary : Theme.blueText
    font.pixelSize: Theme.subheadline
    font.underline: hover.hovered
    textFormat: Text.PlainText
    activeFocusOnTab: true
    Accessible.role: Accessible.Link
    Accessible.name: text
    Accessible.focusable: true
    Accessible.onPressAction: clicked()
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    Keys.onSpacePressed: clicked()

    HoverHandler { id: hover; cursorShape: Qt.PointingHandCursor }
    TapHandler { id: tap; onTapped: link.clicked() }
    FocusRing { control: null; visible: link.activeFocus; radius: 7 }
}
