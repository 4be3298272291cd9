import QtQuick
import QtQuick.Layouts
import Velloway

FocusScope {
    id: tab

    required property SettingsBridge bridge

    focus: true

    FormPage {
        anchors.fill: parent
        focus: true
        Accessible.name: "Settings"

        FormSection {
            title: SettingsTexts.serverSection
            footer: SettingsTexts.serverFooter

            FormRow {
                title: SettingsTexts.status
                wide: true
                RowLayout {
                    spacing: 9
                    visible: tab.bridge.status.isConnected
                    Layout.fillWidth: true
                    Symbol {
                        name: tab.bridge.status.symbol
                        size: 18
                        tint: Theme.named(tab.bridge.status.color)
                    }
                    Column {
                        Layout.fillWidth: true
                        Label {
                            objectName: "deviceName"
                            visible: tab.bridge.status.hasHeadline
                            width: parent.width
                            elide: Text.ElideRight
                            text: tab.bridge.status.headline
                            maximumLineCount: 1
                            font.weight: Font.DemiBold
                        }
                        Label {
                            objectName: "statusDetail"
                            width: parent.width
                            elide: Text.ElideRight
                            text: tab.bridge.status.detail
                            maximumLineCount: 1
                            color: Theme.secondary
                            font.pixelSize: Theme.caption
                        }
                    }
                    Row {
                        objectName: "battery"
                        visible: tab.bridge.status.hasBattery
                        Layout.leftMargin: 10
                        spacing: 5
                        Symbol {
                            name: tab.bridge.status.batterySymbol
                            size: 24
                            anchors.verticalCenter: parent.verticalCenter
                            tint: Theme.named(tab.bridge.status.batteryColor)
                        }
                        Label {
                            objectName: "batteryText"
                            anchors.verticalCenter: parent.verticalCenter
                            text: tab.bridge.status.batteryText
                            color: Theme.named(tab.bridge.status.batteryColor)
                        }
                    }
                }
                ColumnLayout {
                    visible: !tab.bridge.status.isConnected
                    Layout.fillWidth: true
                    spacing: 4
                    RowLayout {
                        spacing: 6
                        Symbol {
                            name: tab.bridge.status.isConnected ? "" : tab.bridge.status.symbol
                            size: 16
                            tint: Theme.named(tab.bridge.status.color)
                        }
                        Label {
                            objectName: "notConnected"
                            text: tab.bridge.status.isConnected ? "" : tab.bridge.status.headline
                            color: Theme.named(tab.bridge.status.color)
                            font.bold: true
                        }
                    }
                    Label {
                        objectName: "connectHint"
                        Layout.fillWidth: true
                        text: tab.bridge.status.isConnected ? "" : tab.bridge.status.detail
                        color: Theme.secondary
                        font.pixelSize: Theme.caption
                        wrapMode: Text.Wrap
                    }
                }
            }
            FormRow {
                title: SettingsTexts.localIP
                SelectableText {
                    objectName: "localIP"
                    text: tab.bridge.localIP
                    font.family: Theme.monospaced
                    font.bold: true
                }
                PlainButton {
                    objectName: "copyLocalIP"
                    symbol: SettingsTexts.copySymbol
                    tint: Theme.secondary
                    Accessible.name: "Copy the address"
                    onClicked: tab.bridge.copyLocalIP()
                }
            }
            FormRow {
                title: SettingsTexts.port
                last: true
                Field {
                    objectName: "port"
                    implicitWidth: 80
                    placeholderText: SettingsTexts.portPrompt
                    horizontalAlignment: TextInput.AlignRight
                    whole: tab.bridge.port
                    Accessible.name: SettingsTexts.port
                    onEditingFinished: tab.bridge.commitPort()
                    // A change of tab ends editing too, and takes the field away at once.
                    Component.onDestruction: tab.bridge.commitEditedPort()
                }
                PushButton {
                    objectName: "restart"
                    visible: tab.bridge.serverRestartNeeded
                    prominent: true
                    controlSize: "small"
                    text: SettingsTexts.restart
                    onClicked: tab.bridge.restartServer()
                }
            }
        }

        FormSection {
            title: SettingsTexts.notificationsSection
            FormRow {
                visible: tab.bridge.permission !== SettingsBridge.NoPermissionRow
                last: true
                RowLayout {
                    objectName: "notificationsEnabled"
                    visible: tab.bridge.permission === SettingsBridge.PermissionGiven
                    spacing: 8
                    Symbol { name: SettingsTexts.enabledSymbol; size: 17; tint: Theme.greenText }
                    Label { text: SettingsTexts.enabled; color: Theme.greenText }
                }
                PushButton {
                    objectName: "requestPermission"
                    visible: tab.bridge.permission === SettingsBridge.RequestPermission
                    text: SettingsTexts.requestPermission
                    onClicked: tab.bridge.requestNotificationPermission()
                }
                PushButton {
                    objectName: "openNotificationSettings"
                    visible: tab.bridge.permission === SettingsBridge.OpenSettings
                    text: SettingsTexts.blocked
                    onClicked: tab.bridge.openNotificationSettings()
                }
            }
        }

        FormSection {
            title: SettingsTexts.generalSection
            FormRow {
                title: SettingsTexts.launchAtLogin
                last: true
                Toggle {
                    objectName: "launchAtLogin"
                    name: SettingsTexts.launchAtLogin
                    checked: tab.bridge.launchAtLogin
                    onToggled: tab.bridge.launchAtLogin = checked
                }
            }
        }
    }
}
