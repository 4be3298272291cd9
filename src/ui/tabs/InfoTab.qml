import QtQuick
import QtQuick.Layouts
import Velloway

FocusScope {
    id: tab

    required property InfoBridge bridge

    focus: true

    FormPage {
        anchors.fill: parent
        focus: true
        Accessible.name: "Info"

        FormSection {
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
                    sourceSize.width: 128
                    sourceSize.height: 128
                    fillMode: Image.PreserveAspectFit
                    source: "image://application-icon/"
                    Accessible.role: Accessible.Graphic
                    Accessible.name: InfoTexts.name
                }
                Column {
                    anchors { left: icon.right; leftMargin: 14; verticalCenter: parent.verticalCenter }
                    spacing: 3
                    Label { text: InfoTexts.name; font.pixelSize: Theme.title2; font.bold: true; Accessible.role: Accessible.Heading }
                    Label { objectName: "version"; text: InfoTexts.version; color: Theme.secondary; font.pixelSize: Theme.subheadline }
                }
            }
        }

        FormSection {
            title: InfoTexts.descriptionSection
            Item {
                width: parent.width
                height: description.height + 24
                Label {
                    id: description

                    x: 12
                    y: 12
                    width: parent.width - 24
                    text: InfoTexts.description
                    wrapMode: Text.Wrap
                }
            }
        }

        FormSection {
            title: InfoTexts.developerSection
            FormRow {
                title: InfoTexts.developerLabel
                Label { text: InfoTexts.developerName; color: Theme.secondary }
            }
            FormRow {
                last: true
                LinkText {
                    objectName: "profile"
                    text: InfoTexts.profileTitle
                    onClicked: tab.bridge.openProfile()
                }
            }
        }

        FormSection {
            title: InfoTexts.supportSection
            FormRow {
                title: InfoTexts.walletName
                symbol: InfoTexts.supportSymbol
                symbolTint: Theme.redText
                last: true
                SelectableText {
                    objectName: "walletAccount"
                    text: InfoTexts.walletAccount
                    font.weight: Font.DemiBold
                }
            }
        }
    }
}
