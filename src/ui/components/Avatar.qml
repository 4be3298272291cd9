import QtQuick
import Velloway

/// A round picture made of initials.
Item {
    property string initials

    implicitWidth: 36
    implicitHeight: 36
    // Under the pale end of the gradient, so that white letters stand out.
    Rectangle {
        anchors.fill: parent
        anchors.margins: 0.5
        radius: width / 2
        color: "#3a3a55"
    }
    Rectangle {
        // A circle looks the same however it is turned; turned by 45 degrees its gradient runs corner to corner.
        anchors.fill: parent
        radius: width / 2
        rotation: -45
        gradient: Gradient {
            GradientStop { position: 0; color: Theme.faded(Theme.blue, 0.6) }
            GradientStop { position: 1; color: Theme.purple }
        }
    }
    Text {
        anchors.centerIn: parent
        text: parent.initials
        color: Theme.white
        font.pixelSize: 13
        font.bold: true
        Accessible.ignored: true
    }
}
