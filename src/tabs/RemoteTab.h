#pragma once

#include <array>
#include <cstddef>
#include <string_view>

namespace velloway {

enum class RemoteSection { media, volume, dPad, core, system };

enum class RemoteOperation { sendMediaCommand, sendNavCommand };

/// A key equivalent, in the platform's names for the modifiers.
struct KeyEquivalent {
    enum class Key { none, upArrow, downArrow, leftArrow, rightArrow, space, escape, returnKey, tab, n };

    Key key = Key::none;
    bool shift = false;
    bool control = false;
    bool option = false;
    bool command = false;

    bool operator==(const KeyEquivalent&) const = default;
};

struct RemoteButton {
    RemoteSection section;
    /// Empty on buttons that show the symbol alone.
    std::string_view title;
    std::string_view symbol;
    RemoteOperation operation;
    std::string_view command;
    KeyEquivalent shortcut;
    /// May be empty.
    std::string_view tooltip;
};

/// By section, in the order of each.
extern const std::array<RemoteButton, 21> remoteButtons;

/// The button that a key press on the Remote tab presses; its position in `remoteButtons`, or that array's
/// size for none. The modifiers must be exactly those of the button.
std::size_t remoteButtonFor(const KeyEquivalent& pressed);

struct ShortcutRow {
    std::string_view key;
    std::string_view meaning;
};

extern const std::array<ShortcutRow, 10> shortcutRows;

namespace remoteTexts {
inline constexpr std::string_view control = "Control Android Device";
inline constexpr std::string_view media = "Media";
inline constexpr std::string_view volume = "Volume";
inline constexpr std::string_view navigation = "Navigation";
inline constexpr std::string_view dPad = "D-Pad";
inline constexpr std::string_view core = "Core";
inline constexpr std::string_view system = "System";
inline constexpr std::string_view shortcuts = "Keyboard Shortcuts";
inline constexpr std::string_view warningSymbol = "exclamationmark.shield.fill";
inline constexpr std::string_view warningTitle = "Accessibility Access Required";
inline constexpr std::string_view warning =
    "Velloway needs Accessibility permission to control media, presentation slides, and system features like "
    "locking or sleeping your Mac.";
inline constexpr std::string_view warningNote =
    "Note: If permission is already granted, try removing Velloway from the list and adding it again.";
inline constexpr std::string_view openSettings = "Open System Settings";
inline constexpr std::string_view refreshStatus = "Refresh Status";
} // namespace remoteTexts

} // namespace velloway
