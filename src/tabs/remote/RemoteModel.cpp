#include "tabs/remote/RemoteModel.h"

#include <algorithm>

namespace velloway {

namespace {

using On = KeyEquivalent::Key;
constexpr auto media = RemoteOperation::sendMediaCommand;
constexpr auto nav = RemoteOperation::sendNavCommand;

} // namespace

const std::array<RemoteButton, 21> remoteButtons{{
    {RemoteSection::media, "", "backward.fill", media, "prev", {}, ""},
    {RemoteSection::media, "", "gobackward.5", media, "seek_backward", {}, ""},
    {RemoteSection::media, "", "playpause.fill", media, "play_pause", {}, ""},
    {RemoteSection::media, "", "goforward.5", media, "seek_forward", {}, ""},
    {RemoteSection::media, "", "forward.fill", media, "next", {}, ""},
    {RemoteSection::volume, "", "speaker.wave.1.fill", media, "vol_down", {}, ""},
    {RemoteSection::volume, "", "speaker.wave.3.fill", media, "vol_up", {}, ""},
    {RemoteSection::dPad, "", "chevron.up", nav, "dpad_up", {.key = On::upArrow}, "Up (↑)"},
    {RemoteSection::dPad, "", "chevron.left", nav, "dpad_left", {.key = On::leftArrow}, "Left (←)"},
    {RemoteSection::dPad,
     "",
     "circle.fill",
     nav,
     "dpad_center",
     {.key = On::space},
     "Select / Enter (Space or Return)"},
    {RemoteSection::dPad, "", "chevron.right", nav, "dpad_right", {.key = On::rightArrow}, "Right (→)"},
    {RemoteSection::dPad, "", "chevron.down", nav, "dpad_down", {.key = On::downArrow}, "Down (↓)"},
    {RemoteSection::core, "Back", "arrow.left", nav, "back", {.key = On::escape}, "Back (Esc or ⌘⌫)"},
    {RemoteSection::core,
     "Enter",
     "return",
     nav,
     "dpad_center",
     {.key = On::returnKey},
     "Enter / Tap (Return)"},
    {RemoteSection::core,
     "Tab →",
     "arrow.right.to.line",
     nav,
     "tab_forward",
     {.key = On::tab},
     "Focus Next (Tab)"},
    {RemoteSection::core,
     "← Tab",
     "arrow.left.to.line",
     nav,
     "tab_backward",
     {.key = On::tab, .shift = true},
     "Focus Prev (⇧Tab)"},
    {RemoteSection::system,
     "Home",
     "house.fill",
     nav,
     "home",
     {.key = On::returnKey, .command = true},
     "Home Screen (⌘Return)"},
    {RemoteSection::system,
     "Recents",
     "square.stack.fill",
     nav,
     "recents",
     {.key = On::tab, .option = true},
     "Recents (⌥Tab)"},
    {RemoteSection::system,
     "Notifications",
     "bell.fill",
     nav,
     "notifications",
     {.key = On::n, .command = true},
     "Notifications (⌘N)"},
    {RemoteSection::system,
     "Search",
     "magnifyingglass",
     nav,
     "search",
     {.key = On::space, .option = true},
     "Global Search (⌥Space)"},
    {RemoteSection::system,
     "App Menu",
     "ellipsis.circle.fill",
     nav,
     "app_menu",
     {.key = On::escape, .control = true},
     "App Menu (⌃Esc)"},
}};

const std::array<ShortcutRow, 10> shortcutRows{{
    {"↑ ↓ ← →", "D-Pad directional"},
    {"Space", "D-Pad center / tap"},
    {"Return", "Enter"},
    {"Tab / ⇧Tab", "Focus next / previous"},
    {"Esc", "Back"},
    {"⌘Return", "Home screen"},
    {"⌥Tab", "Recents / App overview"},
    {"⌘N", "Notifications panel"},
    {"⌥Space", "Global search"},
    {"⌃Esc", "App menu / options"},
}};

std::size_t remoteButtonFor(const KeyEquivalent& pressed) {
    if (pressed.key == On::none) {
        return remoteButtons.size();
    }
    const auto found = std::find_if(remoteButtons.begin(), remoteButtons.end(),
                                    [&](const RemoteButton& button) { return button.shortcut == pressed; });
    return static_cast<std::size_t>(found - remoteButtons.begin());
}

void RemoteModel::pressRemoteButton(std::size_t index) {
    const RemoteButton& button = remoteButtons.at(index);
    switch (button.operation) {
    case RemoteOperation::sendMediaCommand:
        return with_.server.sendMediaCommand(button.command);
    case RemoteOperation::sendNavCommand:
        return with_.server.sendNavCommand(button.command);
    }
}

bool RemoteModel::pressRemoteShortcut(const KeyEquivalent& pressed) {
    const std::size_t index = remoteButtonFor(pressed);
    if (index == remoteButtons.size()) {
        return false;
    }
    pressRemoteButton(index);
    return true;
}

} // namespace velloway
