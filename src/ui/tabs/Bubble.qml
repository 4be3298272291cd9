import QtQuick
import Velloway

/// One message of a chat.
Item {
    id: bubble

    required property SmsBridge bridge
    required property int index
    required property string body
    /// The body with links in it; empty when it has none.
    required property string markup
    required property bool isCut
    required property string time
    required property bool isOutgoing
    readonly property real room: Math.min(width * 0.72, 560) - 26
    /// A text with lines from the right needs the whole room, where they begin.
    readonly property bool runsLeft: /[\u0590-\u08ff\ufb1d-\ufefc]/.test(body)

    objectName: "bubble"
    // A row that waits for its next use must not be there for a screen reader.
    ListView.onPooled: visible = false
    ListView.onReused: visible = true
    height: ground.height + stamp.height + 12
    Accessible.role: Accessible.ListItem
    Accessible.name: (isOutgoing ? "You" : bridge.chat.name) + ", " + time + ": " + body

    Rectangle {
        id: ground

        x: bubble.isOutgoing ? bubble.width - width - 14 : 14
        y: 4
        width: (bubble.runsLeft ? content.width : Math.ceil(content.contentWidth)) + 26
        height: content.contentHeight + 16
        radius: 16
        color: bubble.isOutgoing ? Theme.blue : Theme.controlBackground
        border.width: bubble.isOutgoing ? 0 : 1
        border.color: Theme.faded(Theme.secondary, 0.15)
        SelectableText {
            id: content

            objectName: "body"
            x: 12
            y: 8
            // Laying a long text out on one line, to see how wide it is, takes as long as showing it.
            width: bubble.body.length > 400 ? bubble.room : Math.min(content.implicitWidth + 2, bubble.room)
            text: bubble.markup ? "<style>a { color: " + (bubble.isOutgoing ? Theme.white : Theme.blueText) + " }</style>" + bubble.markup : bubble.body
            textFormat: bubble.markup ? TextEdit.RichText : TextEdit.PlainText
            Accessible.name: bubble.body
            onLinkActivated: link => bubble.bridge.openLink(link)
            HoverHandler {
                enabled: content.hoveredLink !== ""
                cursorShape: Qt.PointingHandCursor
            }
            isCut: bubble.isCut
            onCopyFrom: start => bubble.bridge.copyMessage(bubble.index, start)
            color: bubble.isOutgoing ? Theme.white : Theme.primary
            selectionColor: bubble.isOutgoing ? "#66ffffff" : Theme.faded(Theme.blue, 0.35)
        }
    }
    Text {
        id: stamp

        anchors { top: ground.bottom; topMargin: 2 }
        x: bubble.isOutgoing ? bubble.width - width - 18 : 18
        text: bubble.time
        color: Theme.secondary
        font.pixelSize: 8
        Accessible.ignored: true
    }
}
