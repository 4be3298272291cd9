import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Velloway

FocusScope {
    id: tab

    required property var bridge
    readonly property var texts: bridge.texts.remote

    function buttons(section) {
        return bridge.remoteButtons.filter(entry => entry.section === section)
    }
    function named(command, section) {
        return bridge.remoteButtons.find(entry => entry.command === command && entry.section === section)
    }

    focus: true
    Keys.priority: Keys.BeforeItem
    Keys.onShortcutOverride: event => event.accepted = true
    Keys.onPressed: event => {
        if (!event.isAutoRepeat || event.key === Qt.Key_Up || event.key === Qt.Key_Down || event.key === Qt.Key_Left || event.key === Qt.Key_Right)
            event.accepted = bridge.pressRemoteShortcut(event.key, event.modifiers)
    }

    component Command: PushButton {
        property var entry

        objectName: "remote" + entry.index
        text: entry.title
        symbol: entry.symbol
        tip: entry.tooltip
        // The keyboard belongs to the shortcuts of this tab; a button that kept the focus would take Space from them.
        focusPolicy: Qt.NoFocus
        Accessible.name: entry.title || entry.tooltip || entry.command
        onClicked: tab.bridge.pressRemoteButton(entry.index)
    }
    component GroupTitle: Label {
        color: Theme.secondary
        font.pixelSize: Theme.callout
    }
    component Block: Rectangle {
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
                text: parent.parent.title
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
                visible: tab.bridge.shown.showsAccessibilityWarning
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
                        Symbol { name: tab.texts.warningSymbol; size: 20; tint: Theme.orange }
                        Label { text: tab.texts.warningTitle; font.weight: Font.DemiBold; Accessible.role: Accessible.Heading }
                    }
                    Label {
                        Layout.fillWidth: true
                        text: tab.texts.warning
                        font.pixelSize: Theme.subheadline
                        wrapMode: Text.Wrap
                    }
                    Label {
                        Layout.fillWidth: true
                        text: tab.texts.warningNote
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
                            text: tab.texts.openSettings
                            onClicked: tab.bridge.openAccessibilitySettings()
                        }
                        PushButton {
                            objectName: "refreshStatus"
                            controlSize: "small"
                            focusPolicy: Qt.NoFocus
                            text: tab.texts.refreshStatus
                            onClicked: tab.bridge.refreshAccessibilityStatus()
                        }
                    }
                }
            }

            Block {
                title: tab.texts.control
                RowLayout {
                    spacing: 20
                    ColumnLayout {
                        spacing: 8
                        GroupTitle { text: tab.texts.media }
                        Row {
                            spacing: 8
                            Repeater {
                                model: tab.buttons("media")
                                Command { required property var modelData; entry: modelData; controlSize: "large"; implicitWidth: 52 }
                            }
                        }
                    }
                    Separator { vertical: true; Layout.fillHeight: true }
                    ColumnLayout {
                        spacing: 8
                        GroupTitle { text: tab.texts.volume }
                        Row {
                            spacing: 8
                            Repeater {
                                model: tab.buttons("volume")
                                Command { required property var modelData; entry: modelData; controlSize: "large"; implicitWidth: 52 }
                            }
                        }
                    }
                    Item { Layout.fillWidth: true }
                }
            }

            Block {
                title: tab.texts.navigation
                RowLayout {
                    spacing: 16
                    ColumnLayout {
                        Layout.alignment: Qt.AlignTop
                        spacing: 8
                        GroupTitle { text: tab.texts.dPad }
                        Grid {
                            columns: 3
                            spacing: 6
                            Item { width: 44; height: 36 }
                            Command { entry: tab.named("dpad_up", "dPad"); implicitWidth: 44; implicitHeight: 36; leftPadding: 4; rightPadding: 4 }
                            Item { width: 44; height: 36 }
                            Command { entry: tab.named("dpad_left", "dPad"); implicitWidth: 44; implicitHeight: 36; leftPadding: 4; rightPadding: 4 }
                            Command { entry: tab.named("dpad_center", "dPad"); implicitWidth: 44; implicitHeight: 36; leftPadding: 4; rightPadding: 4 }
                            Command { entry: tab.named("dpad_right", "dPad"); implicitWidth: 44; implicitHeight: 36; leftPadding: 4; rightPadding: 4 }
                            Item { width: 44; height: 36 }
                            Command { entry: tab.named("dpad_down", "dPad"); implicitWidth: 44; implicitHeight: 36; leftPadding: 4; rightPadding: 4 }
                            Item { width: 44; height: 36 }
                        }
                    }
                    Separator { vertical: true; Layout.fillHeight: true }
                    ColumnLayout {
                        Layout.alignment: Qt.AlignTop
                        spacing: 8
                        GroupTitle { text: tab.texts.core }
                        Repeater {
                            model: tab.buttons("core")
                            Command { required property var modelData; entry: modelData; alignLeft: true; leftPadding: 10; rightPadding: 10; implicitWidth: 150 }
                        }
                    }
                    Separator { vertical: true; Layout.fillHeight: true }
                    ColumnLayout {
                        Layout.alignment: Qt.AlignTop
                        spacing: 8
                        GroupTitle { text: tab.texts.system }
                        Repeater {
                            model: tab.buttons("system")
                            Command { required property var modelData; entry: modelData; alignLeft: true; leftPadding: 10; rightPadding: 10; implicitWidth: 150 }
                        }
                    }
                    Item { Layout.fillWidth: true }
                }
            }

            Block {
                title: tab.texts.shortcuts
                Grid {
                    columns: 2
                    columnSpacing: 20
                    rowSpacing: 6
                    Repeater {
                        model: {
                            const cells = []
                            for (const row of tab.bridge.shortcuts)
                                cells.push({ text: row.key, key: true }, { text: row.meaning, key: false })
                            return cells
                        }
                        Label {
                            required property var modelData

                            text: modelData.text
                            color: modelData.key ? Theme.primary : Theme.secondary
                            font.pixelSize: Theme.caption
                            font.family: Theme.monospaced
                            font.bold: modelData.key
                        }
                    }
                }
            }
        }
    }
}
