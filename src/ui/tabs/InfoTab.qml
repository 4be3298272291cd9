import QtQuick
import QtQuick.Layouts
import Velloway

FocusScope {
    id: tab

    required property var bridge
    readonly property var texts: bridge.texts.info

    FormPage {
        anchors.fill: parent

        FormSection {
            Layout.fillWidth: true
            Item {
                width: parent.width
                height: 92
                Image {
                    id: icon

                    objectName: "icon"
                    x: 14
                    anchors.verticalCenter: parent.verticalCenter
                    width: 64
                    height: 64
                    sourceSize: Qt.size(128, 128)
                    fillMode: Image.PreserveAspectFit
                    source: "image://application-icon/"
                    Accessible.role: Accessible.Graphic
                    Accessible.name: tab.texts.name
                }
                Column {
                    anchors { left: icon.right; leftMargin: 14; verticalCenter: parent.verticalCenter }
                    spacing: 3
                    Label { text: tab.texts.name; font.pixelSize: Theme.title2; font.bold: true; Accessible.role: Accessible.Heading }
                    Label { objectName: "version"; text: tab.texts.version; color: Theme.secondary; font.pixelSize: Theme.subheadline }
                }
            }
        }

        FormSection {
            Layout.fillWidth: true
            title: tab.texts.descriptionSection
            Item {
                width: parent.width
                height: description.height + 24
                Label {
                    id: description

                    x: 12
                    y: 12
                    width: parent.width - 24
                    text: tab.texts.description
                    wrapMode: Text.Wrap
                }
            }
        }

        FormSection {
            Layout.fillWidth: true
            title: tab.texts.developerSection
            FormRow {
                title: tab.texts.developerLabel
                Label { text: tab.texts.developerName; color: Theme.secondary }
            }
            FormRow {
                last: true
                PlainButton {
                    objectName: "profile"
                    padding: 2
                    text: tab.texts.profileTitle
                    textSize: Theme.subheadline
                    Accessible.role: Accessible.Link
                    onClicked: tab.bridge.openProfile()
                }
            }
        }

        FormSection {
            Layout.fillWidth: true
            title: tab.texts.supportSection
            FormRow {
                title: tab.texts.walletName
                symbol: tab.texts.supportSymbol
                symbolTint: Theme.red
                last: true
                SelectableText {
                    objectName: "walletAccount"
                    text: tab.texts.walletAccount
                    font.weight: Font.DemiBold
                }
            }
        }
    }
}
