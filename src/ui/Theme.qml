pragma Singleton
import QtQuick
import Velloway

/// Every colour, in the light or the dark form as the desktop is, and every size and font role.
Colors {
    id: theme

    readonly property SystemPalette desktop: SystemPalette {}

    dark: desktop.window.hslLightness < 0.5

    readonly property color tint: blueText

    /// The colour that a rule of the program names, for text and symbols.
    function named(role: string): color {
        switch (role) {
        case "secondary": return secondary
        case "tint": return tint
        case "white": return white
        case "red": return redText
        case "green": return greenText
        case "blue": return blueText
        case "orange": return orange
        default: return primary
        }
    }

    function faded(color: color, opacity: real): color {
        return Qt.rgba(color.r, color.g, color.b, color.a * opacity)
    }

    readonly property int largeTitle: 26
    readonly property int title: 22
    readonly property int title2: 17
    readonly property int title3: 15
    readonly property int headline: 13
    readonly property int body: 13
    readonly property int callout: 12
    readonly property int subheadline: 12
    readonly property int caption: 11
    readonly property int caption2: 10

    readonly property string monospaced: Desktop.fixedFontFamily
    readonly property int radius: 8
    readonly property int padding: 16
    /// How wide the rows of a list become in a wide window.
    readonly property int pageWidth: 820
}
