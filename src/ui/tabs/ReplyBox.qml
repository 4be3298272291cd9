import QtQuick
import QtQuick.Layouts
import Velloway

/// The reply to one notification, in its row.
RowLayout {
    id: box

    required property NotificationsBridge bridge
    required property string rowId

    spacing: 8
    Field {
        objectName: "replyField"
        Layout.fillWidth: true
        implicitHeight: 24
        placeholderText: NotificationsTexts.replyPlaceholder
        whole: box.bridge.replyText
        onAccepted: box.bridge.sendReply(box.rowId)
        Keys.onEscapePressed: box.bridge.cancelReply()
        Component.onCompleted: forceActiveFocus()
    }
    PushButton {
        objectName: "sendReply"
        prominent: true
        controlSize: "small"
        text: NotificationsTexts.send
        onClicked: box.bridge.sendReply(box.rowId)
    }
    PlainButton {
        objectName: "cancelReply"
        text: NotificationsTexts.cancel
        tint: Theme.secondary
        onClicked: box.bridge.cancelReply()
    }
}
