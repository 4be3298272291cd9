import QtQuick
import QtQuick.Layouts
import Velloway

FocusScope {
    id: tab

    required property var bridge
    readonly property var texts: bridge.texts.settings
    readonly property var status: bridge.shown.status

    FormPage {
        anchors.fill: parent

        FormSection {
            Layout.fillWidth: true
            title: tab.texts.serverSection
            footer: tab.texts.serverFooter

            FormRow {
                title: tab.texts.status
                wide: true
                RowLayout {
                    spacing: 9
                    visible: tab.status.isConnected
                    Layout.fillWidth: true
                    Symbol {
                        name: tab.status.symbol
                        size: 18
                        tint: Theme.named(tab.status.color)
                    }
                    Column {
                        Layout.fillWidth: true
                        Label {
                            objectName: "deviceName"
                            visible: tab.status.headline !== null
                            width: parent.width
                            elide: Text.ElideRight
                            text: tab.status.headline || ""
                            font.weight: Font.DemiBold
                        }
                        Label {
                            objectName: "statusDetail"
                            width: parent.width
                            elide: Text.ElideRight
                            text: tab.status.detail
                            color: Theme.secondary
                            font.pixelSize: Theme.caption
                        }
                    }
                    Row {
                        objectName: "battery"
                        visible: tab.status.battery !== null
                        Layout.leftMargin: 10
                        spacing: 5
                        Symbol {
                            name: tab.status.battery ? tab.status.battery.symbol : ""
                            size: 24
                            anchors.verticalCenter: parent.verticalCenter
                            tint: tab.status.battery ? Theme.named(tab.status.battery.color) : Theme.primary
                        }
                        Label {
                            objectName: "batteryText"
                            anchors.verticalCenter: parent.verticalCenter
                            text: tab.status.battery ? tab.status.battery.text : ""
                            color: tab.status.battery ? Theme.named(tab.status.battery.color) : Theme.primary
                        }
                    }
                }
                ColumnLayout {
                    visible: !tab.status.isConnected
                    Layout.fillWidth: true
                    spacing: 4
                    RowLayout {
                        spacing: 6
                        Symbol {
                            name: tab.status.isConnected ? "" : tab.status.symbol
                            size: 16
                            tint: Theme.named(tab.status.color)
                        }
                        Label {
                            objectName: "notConnected"
                            text: tab.status.isConnected ? "" : tab.status.headline || ""
                            color: Theme.named(tab.status.color)
                            font.bold: true
                        }
                    }
                    Label {
                        objectName: "connectHint"
                        Layout.fillWidth: true
                        text: tab.status.isConnected ? "" : tab.status.detail
                        color: Theme.secondary
                        font.pixelSize: Theme.caption
                        wrapMode: Text.Wrap
                    }
                }
            }
            FormRow {
                title: tab.texts.localIP
                SelectableText {
                    objectName: "localIP"
                    text: tab.bridge.shown.localIP
                    font.family: Theme.monospaced
                    font.bold: true
                }
                PlainButton {
                    objectName: "copyLocalIP"
                    symbol: tab.texts.copySymbol
                    tint: Theme.secondary
                    Accessible.name: "Copy the address"
                    onClicked: tab.bridge.copyLocalIP()
                }
            }
            FormRow {
                title: tab.texts.port
                last: true
                PushButton {
                    objectName: "restart"
                    visible: tab.bridge.fields.serverRestartNeeded
                    prominent: true
                    controlSize: "small"
                    text: tab.texts.restart
                    onClicked: tab.bridge.restartServer()
                }
                Field {
                    id: port

                    objectName: "port"
                    implicitWidth: 80
                    placeholderText: tab.texts.portPrompt
                    horizontalAlignment: TextInput.AlignRight
                    text: tab.bridge.shown.portText
                    Accessible.name: tab.texts.port
                    onEditingFinished: {
                        tab.bridge.commitPort(text)
                        text = Qt.binding(() => tab.bridge.shown.portText)
                    }
                }
            }
        }

        FormSection {
            Layout.fillWidth: true
            title: tab.texts.notificationsSection
            visible: tab.bridge.shown.notificationPermission !== "none"
            FormRow {
                last: true
                RowLayout {
                    objectName: "notificationsEnabled"
                    visible: tab.bridge.shown.notificationPermission === "enabled"
                    spacing: 8
                    Symbol { name: tab.texts.enabledSymbol; size: 17; tint: Theme.green }
                    Label { text: tab.texts.enabled; color: Theme.green }
                }
                PushButton {
                    objectName: "requestPermission"
                    visible: tab.bridge.shown.notificationPermission === "requestPermission"
                    text: tab.texts.requestPermission
                    onClicked: tab.bridge.requestNotificationPermission()
                }
                PushButton {
                    objectName: "openNotificationSettings"
                    visible: tab.bridge.shown.notificationPermission === "openSettings"
                    text: tab.texts.blocked
                    onClicked: tab.bridge.openNotificationSettings()
                }
            }
        }

        FormSection {
            Layout.fillWidth: true
            title: tab.texts.generalSection
            FormRow {
                title: tab.texts.launchAtLogin
                last: true
                Toggle {
                    objectName: "launchAtLogin"
                    name: tab.texts.launchAtLogin
                    checked: tab.bridge.fields.launchAtLogin
                    onToggled: tab.bridge.fields.launchAtLogin = checked
                }
            }
        }
    }
}
