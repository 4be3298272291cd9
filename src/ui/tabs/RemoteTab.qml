import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Velloway

FocusScope {
    id: tab

    required property RemoteBridge bridge

    focus: true
    Keys.priority: Keys.BeforeItem
    Keys.onShortcutOverride: event => event.accepted = true
    Keys.onPressed: event => {
        event.accepted = tab.bridge.pressShortcut(event.key, event.modifiers, event.isAutoRepeat) || scrollBy(event.key)
    }

    /// By the keys that are nobody's shortcut.
    function scrollBy(key: int): bool {
        const last = Math.max(0, flick.contentHeight - flick.height)
        switch (key) {
        case Qt.Key_PageUp: flick.contentY = Math.max(0, flick.contentY - flick.height * 0.9); return true
        case Qt.Key_PageDown: flick.contentY = Math.min(last, flick.contentY + flick.height * 0.9); return true
        case Qt.Key_Home: flick.contentY = 0; return true
        case Qt.Key_End: flick.contentY = last; return true
        default: return false
        }
    }

    component Command: PushButton {
        required property RemoteBridge bridge
        required property int position
        required property string caption
        required property string symbolName
        required property string tooltip
        required property string spoken

        objectName: "remote" + position
        text: caption
        symbol: symbolName
        tip: tooltip
        // The keyboard belongs to the shortcuts of this tab; a button that kept the focus would take Space from them.
        focusPolicy: Qt.NoFocus
        Accessible.name: caption || tooltip || spoken
        onClicked: bridge.pressRemoteButton(position)
    }
    component GroupTitle: Label {
        color: Theme.secondary
        font.pixelSize: Theme.callout
    }
    component ShortcutText: Label {
        font.pixelSize: Theme.caption
        font.family: Theme.monospaced
    }
    component Block: Rectangle {
        id: block

        default property alias content: column.data
        property string title

        Layout.fillWidth: true
        implicitHeight: column.implicitHeight + 32
        radius: 12
        color: Theme.controlBackground
        border.width: 1
        border.color: Theme.separator
        ColumnLayout {
            id: column

            anchors { left: parent.left; right: parent.right; top: parent.top; margins: 16 }
            spacing: 14
            Label {
                text: block.title
                font.pixelSize: Theme.headline
                font.weight: Font.DemiBold
                Accessible.role: Accessible.Heading
            }
        }
    }

    Flickable {
        id: flick

        anchors.fill: parent
        contentHeight: page.implicitHeight + 40
        clip: true
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.vertical: ThinScrollBar {}

        ColumnLayout {
            id: page

            x: Math.max(20, (flick.width - width) / 2)
            y: 20
            width: Math.min(flick.width - 40, 820)
            spacing: 30

            Rectangle {
                objectName: "accessibilityWarning"
                visible: tab.bridge.showsWarning
                Layout.fillWidth: true
                implicitHeight: warning.implicitHeight + 32
                radius: 12
                color: Theme.faded(Theme.orange, 0.1)
                ColumnLayout {
                    id: warning

                    anchors { left: parent.left; right: parent.right; top: parent.top; margins: 16 }
                    spacing: 10
                    RowLayout {
                        spacing: 9
                        Symbol { name: RemoteTexts.warningSymbol; size: 20; tint: Theme.orange }
                        Label { text: RemoteTexts.warningTitle; font.weight: Font.DemiBold; Accessible.role: Accessible.Heading }
                    }
                    Label {
                        Layout.fillWidth: true
                        text: RemoteTexts.warning
                        font.pixelSize: Theme.subheadline
                        wrapMode: Text.Wrap
                    }
                    Label {
                        Layout.fillWidth: true
                        text: RemoteTexts.warningNote
                        color: Theme.secondary
                        font.pixelSize: Theme.caption
                        wrapMode: Text.Wrap
                    }
                    RowLayout {
                        spacing: 8
                        PushButton {
                            objectName: "openSystemSettings"
                            prominent: true
                            controlSize: "small"
                            focusPolicy: Qt.NoFocus
                            text: RemoteTexts.openSettings
                            onClicked: tab.bridge.openAccessibilitySettings()
                        }
                        PushButton {
                            objectName: "refreshStatus"
                            controlSize: "small"
                            focusPolicy: Qt.NoFocus
                            text: RemoteTexts.refreshStatus
                            onClicked: tab.bridge.refreshAccessibilityStatus()
                        }
                    }
                }
            }

            Block {
                title: RemoteTexts.control
                RowLayout {
                    spacing: 20
                    ColumnLayout {
                        spacing: 8
                        GroupTitle { text: RemoteTexts.media }
                        Row {
                            spacing: 8
                            Repeater {
                                model: tab.bridge.media
                                Command { controlSize: "large"; implicitWidth: 52 }
                            }
                        }
                    }
                    Separator { vertical: true; Layout.fillHeight: true }
                    ColumnLayout {
                        spacing: 8
                        GroupTitle { text: RemoteTexts.volume }
                        Row {
                            spacing: 8
                            Repeater {
                                model: tab.bridge.volume
                                Command { controlSize: "large"; implicitWidth: 52 }
                            }
                        }
                    }
                    Item { Layout.fillWidth: true }
                }
            }

            Block {
                title: RemoteTexts.navigation
                RowLayout {
                    spacing: 16
                    ColumnLayout {
                        Layout.alignment: Qt.AlignTop
                        spacing: 8
                        GroupTitle { text: RemoteTexts.dPad }
                        Item {
                            implicitWidth: 144
                            implicitHeight: 120
                            Repeater {
                                model: tab.bridge.dPad
                                Command {
                                    required property int index

                                    x: [50, 0, 50, 100, 50][index]
                                    y: [0, 42, 42, 42, 84][index]
                                    implicitWidth: 44
                                    implicitHeight: 36
                                    leftPadding: 4
                                    rightPadding: 4
                                }
                            }
                        }
                    }
                    Separator { vertical: true; Layout.fillHeight: true }
                    ColumnLayout {
                        Layout.alignment: Qt.AlignTop
                        spacing: 8
                        GroupTitle { text: RemoteTexts.core }
                        Repeater {
                            model: tab.bridge.core
                            Command { alignLeft: true; leftPadding: 10; rightPadding: 10; implicitWidth: 150 }
                        }
                    }
                    Separator { vertical: true; Layout.fillHeight: true }
                    ColumnLayout {
                        Layout.alignment: Qt.AlignTop
                        spacing: 8
                        GroupTitle { text: RemoteTexts.system }
                        Repeater {
                            model: tab.bridge.system
                            Command { alignLeft: true; leftPadding: 10; rightPadding: 10; implicitWidth: 150 }
                        }
                    }
                    Item { Layout.fillWidth: true }
                }
            }

            Block {
                title: RemoteTexts.shortcuts
                Row {
                    spacing: 20
                    Column {
                        spacing: 6
                        Repeater {
                            model: tab.bridge.shortcuts
                            ShortcutText {
                                required property string key

                                text: key
                                font.bold: true
                            }
                        }
                    }
                    Column {
                        spacing: 6
                        Repeater {
                            model: tab.bridge.shortcuts
                            ShortcutText {
                                required property string meaning

                                text: meaning
                                color: Theme.secondary
                            }
                        }
                    }
                }
            }
        }
    }
}
