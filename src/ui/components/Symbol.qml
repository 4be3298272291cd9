import QtQuick
import QtQuick.Layouts
import QtQuick.Window
import Velloway

/// A symbol of the set, in one colour.
Image {
    property string name
    property color tint: Theme.primary
    property real size: 16

    width: size
    height: size
    // The implicit size of an image is its number of pixels, and a layout goes by that.
    Layout.preferredWidth: size
    Layout.preferredHeight: size
    sourceSize.width: Math.ceil(size * Screen.devicePixelRatio)
    sourceSize.height: Math.ceil(size * Screen.devicePixelRatio)
    source: name ? "image://symbol/" + name + "/" + tint.toString().slice(1) : ""
    Accessible.ignored: true
}
