pragma Singleton
import QtQuick

/// Every colour, size and font role, in a light and a dark form.
QtObject {
    id: theme

    readonly property SystemPalette desktop: SystemPalette {}
    readonly property bool dark: desktop.window.hslLightness < 0.5

    readonly property color window: dark ? "#1f1f21" : "#f6f6f7"
    readonly property color sidebar: dark ? "#29292c" : "#ebebed"
    readonly property color controlBackground: dark ? "#2c2c2f" : "#ffffff"
    readonly property color underPage: dark ? "#19191b" : "#f2f2f4"
    readonly property color fieldBackground: dark ? "#14ffffff" : "#0d000000"
    readonly property color separator: dark ? "#24ffffff" : "#1c000000"
    readonly property color outline: dark ? "#30ffffff" : "#24000000"
    readonly property color hover: dark ? "#12ffffff" : "#0f000000"
    readonly property color pressed: dark ? "#24ffffff" : "#1f000000"
    readonly property color button: dark ? "#3a3a3e" : "#ffffff"
    readonly property color panel: dark ? "#f02b2b2e" : "#f0f4f4f6"
    readonly property color panelOpaque: dark ? "#2b2b2e" : "#f4f4f6"

    readonly property color primary: dark ? "#f5f5f7" : "#1d1d1f"
    readonly property color secondary: dark ? "#a5a5ab" : "#6c6c72"
    readonly property color tertiary: dark ? "#85858b" : "#8b8b91"
    readonly property color white: "#ffffff"
    readonly property color blue: dark ? "#0a84ff" : "#0a7bff"
    readonly property color green: dark ? "#30d158" : "#2db84f"
    readonly property color red: dark ? "#ff453a" : "#f5392f"
    readonly property color orange: dark ? "#ff9f0a" : "#f08c00"
    readonly property color gray: "#8e8e93"
    readonly property color purple: dark ? "#bf5af2" : "#af52de"
    readonly property color tint: blue

    /// The colour that a rule of the program names.
    function named(role) {
        switch (role) {
        case "secondary": return secondary
        case "tint": return tint
        case "white": return white
        case "red": return red
        case "green": return green
        case "blue": return blue
        case "orange": return orange
        default: return primary
        }
    }

    function faded(color, opacity) {
        return Qt.rgba(color.r, color.g, color.b, color.a * opacity)
    }

    readonly property int largeTitle: 26
    readonly property int title: 22
    readonly property int title2: 17
    readonly property int title3: 15
    readonly property int body: 13
    readonly property int callout: 12
    readonly property int subheadline: 12
    readonly property int caption: 11
    readonly property int caption2: 10

    /// From the engine's set-up: every desktop has another.
    readonly property string monospaced: fixedFontFamily
    readonly property int radius: 8
    readonly property int padding: 16
}
