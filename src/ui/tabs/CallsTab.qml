import QtQuick
import QtQuick.Controls.Basic
import QtQuick.Layouts
import Velloway

FocusScope {
    id: tab

    required property CallsBridge bridge

    focus: true

    component RecentCall: Rectangle {
        id: row

        required property CallsBridge bridge
        required property int index
        required property string number
        required property string name
        required property string date
        required property string symbol
        required property string colorRole
        required property string direction

        objectName: "recentCall"
        // A row that waits for its next use must not be there for a screen reader.
        ListView.onPooled: visible = false
        ListView.onReused: visible = true
        width: ListView.view ? Math.min(ListView.view.width - 20, Theme.pageWidth) : 0
        height: 48
        radius: Theme.radius
        color: tap.pressed ? Theme.pressed : hover.hovered ? Theme.hover : "transparent"
        Accessible.role: Accessible.Button
        Accessible.name: direction + ", " + name + ", " + number + ", " + date
        Accessible.onPressAction: press()

        function press() { bridge.callBack(index) }

        FocusRing { control: null; visible: row.ListView.isCurrentItem && row.ListView.view.activeFocus; anchors.margins: 0; radius: Theme.radius }

        Symbol {
            id: arrow

            x: 10
            anchors.verticalCenter: parent.verticalCenter
            name: row.symbol
            tint: Theme.named(row.colorRole)
            size: 17
        }
        Column {
            anchors { left: arrow.right; leftMargin: 12; right: when.left; rightMargin: 10; verticalCenter: parent.verticalCenter }
            spacing: 2
            Label {
                width: parent.width
                text: row.name
                maximumLineCount: 1
                font.weight: Font.Medium
                elide: Text.ElideRight
            }
            Label {
                width: parent.width
                text: row.number
                maximumLineCount: 1
                color: Theme.secondary
                font.pixelSize: 11
                elide: Text.ElideRight
            }
        }
        Label {
            id: when

            anchors { right: parent.right; rightMargin: 10; verticalCenter: parent.verticalCenter }
            text: row.date
            color: Theme.secondary
            font.pixelSize: 10
        }
        HoverHandler { id: hover }
        TapHandler { id: tap; onTapped: row.press() }
    }

    RowLayout {
        anchors.fill: parent
        spacing: 0

        FocusScope {
            id: dialer

            objectName: "dialer"
            Layout.preferredWidth: 320
            Layout.minimumWidth: 320
            Layout.maximumWidth: 320
            Layout.fillHeight: true
            focus: true
            activeFocusOnTab: true
            Accessible.role: Accessible.Grouping
            Accessible.name: "Dial pad"
            Keys.onPressed: event => event.accepted = tab.bridge.pressKey(event.key, event.text, event.isAutoRepeat)
            TapHandler { onTapped: dialer.forceActiveFocus() }

            Column {
                anchors.centerIn: parent
                spacing: 20

                Item {
                    width: 320
                    height: 60
                    Label {
                        objectName: "number"
                        anchors.fill: parent
                        anchors.leftMargin: 20
                        anchors.rightMargin: 20
                        text: tab.bridge.pad.numberText
                        maximumLineCount: 1
                        font.pixelSize: 38
                        font.weight: Font.Light
                        fontSizeMode: Text.HorizontalFit
                        minimumPixelSize: 16
                        elide: Text.ElideLeft
                        horizontalAlignment: Text.AlignHCenter
                        verticalAlignment: Text.AlignVCenter
                    }
                }

                Grid {
                    anchors.horizontalCenter: parent.horizontalCenter
                    columns: 3
                    columnSpacing: 22
                    rowSpacing: 15
                    Repeater {
                        model: tab.bridge.dialButtons
                        AbstractButton {
                            id: cell

                            required property CallsBridge bridge
                            required property string digit
                            required property string letters
                            required property int index

                            objectName: "dial" + digit
                            width: 70
                            height: 70
                            focusPolicy: Qt.NoFocus
                            Accessible.role: Accessible.Button
                            Accessible.name: digit
                            Accessible.onPressAction: if (enabled) clicked()
                            onClicked: bridge.pressDialButton(index)
                            background: Rectangle {
                                radius: height / 2
                                color: cell.down ? Theme.pressed : cell.hovered ? Qt.darker(Theme.controlBackground, 1.04) : Theme.controlBackground
                                border.width: 1
                                border.color: Theme.separator
                            }
                            contentItem: Item {
                                Column {
                                    anchors.centerIn: parent
                                    spacing: -1
                                    Text {
                                        anchors.horizontalCenter: parent.horizontalCenter
                                        text: cell.digit
                                        color: Theme.primary
                                        font.pixelSize: 28
                                        Accessible.ignored: true
                                    }
                                    Text {
                                        visible: text
                                        anchors.horizontalCenter: parent.horizontalCenter
                                        text: cell.letters
                                        color: Theme.secondary
                                        font.pixelSize: 8
                                        Accessible.ignored: true
                                    }
                                }
                            }
                        }
                    }
                }

                // Under the columns of the grid, whose middle one the call button fills.
                RowLayout {
                    anchors.horizontalCenter: parent.horizontalCenter
                    spacing: 21
                    Item {
                        implicitWidth: 70
                        implicitHeight: 20
                        SimSegments {
                            objectName: "simSegments"
                            anchors.centerIn: parent
                            visible: tab.bridge.pad.showsSimPicker
                            bridge: tab.bridge
                        }
                    }
                    CircleButton {
                        objectName: "call"
                        diameter: 72
                        symbolSize: 28
                        symbol: CallsTexts.callSymbol
                        name: "Call"
                        fill: Theme.green
                        enabled: tab.bridge.pad.canCall
                        onClicked: tab.bridge.startCall()
                    }
                    Item {
                        implicitWidth: 70
                        implicitHeight: 30
                        PlainButton {
                            objectName: "delete"
                            anchors.centerIn: parent
                            width: 50
                            leftPadding: 14
                            symbol: CallsTexts.deleteSymbol
                            symbolSize: 22
                            tint: Theme.secondary
                            opacity: tab.bridge.pad.showsDelete ? 1 : 0
                            focusPolicy: Qt.NoFocus
                            Accessible.name: "Delete"
                            onClicked: tab.bridge.deleteLastDigit()
                        }
                    }
                }
            }
        }

        Separator { vertical: true; Layout.fillHeight: true }

        ColumnLayout {
            spacing: 0
            Label {
                objectName: "recentCallsTitle"
                text: CallsTexts.recentCalls
                font.pixelSize: Theme.headline
                font.weight: Font.DemiBold
                Layout.margins: 20
                Accessible.role: Accessible.Heading
            }
            RowList {
                id: list

                objectName: "recentCalls"
                Layout.fillWidth: true
                Layout.fillHeight: true
                hasCurrentRow: true
                model: tab.bridge.recentCalls
                reuseItems: true
                leftMargin: 10
                rightMargin: 10
                Accessible.name: CallsTexts.recentCalls
                // A cast to a type of this file gives null in Qt 6.4.
                // qmllint disable type
                Keys.onReturnPressed: if (currentItem) currentItem.press()
                Keys.onEnterPressed: if (currentItem) currentItem.press()
                // qmllint enable type
                delegate: RecentCall {}
                Label {
                    objectName: "noRecentCalls"
                    visible: list.count === 0
                    x: 20
                    y: 4
                    text: CallsTexts.noRecentCalls
                    color: Theme.secondary
                }
            }
        }
    }
}
