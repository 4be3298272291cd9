#pragma once

#include "tabs/TabDependencies.h"

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

    bool operator==(const ShortcutRow&) const = default;
};

extern const std::array<ShortcutRow, 10> shortcutRows;

/// The remote control of the phone, and the warning about the permission that the other direction needs. Main
/// thread only.
class RemoteModel {
public:
    explicit RemoteModel(const TabDependencies& dependencies)
        : isAccessibilityEnabled(dependencies.accessibility.isTrusted()), with_(dependencies) {}

    Observable<bool> isAccessibilityEnabled;

    /// `index` is a position in `remoteButtons`.
    void pressRemoteButton(std::size_t index);
    /// False when the key press belongs to no button.
    bool pressRemoteShortcut(const KeyEquivalent& pressed);
    void openAccessibilitySettings() { with_.workspace.openSettings(SettingsPane::accessibility); }
    void refreshAccessibilityStatus() { isAccessibilityEnabled.set(with_.accessibility.isTrusted()); }

private:
    const TabDependencies& with_;
};

} // namespace velloway
