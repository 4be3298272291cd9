#include "bridge/RemoteBridge.h"

#include <utility>

namespace velloway {

namespace {

KeyEquivalent::Key remoteKey(int key) {
    using Key = KeyEquivalent::Key;
    switch (key) {
    case Qt::Key_Up:
        return Key::upArrow;
    case Qt::Key_Down:
        return Key::downArrow;
    case Qt::Key_Left:
        return Key::leftArrow;
    case Qt::Key_Right:
        return Key::rightArrow;
    case Qt::Key_Space:
        return Key::space;
    case Qt::Key_Escape:
        return Key::escape;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return Key::returnKey;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return Key::tab;
    case Qt::Key_N:
        return Key::n;
    default:
        return Key::none;
    }
}

/// The buttons that show a symbol alone, in words.
QString spoken(std::string_view command) {
    constexpr std::pair<std::string_view, const char*> names[] = {
        {"prev", "Previous track"}, {"seek_backward", "Back 5 seconds"},   {"play_pause", "Play or pause"},
        {"next", "Next track"},     {"seek_forward", "Forward 5 seconds"}, {"vol_down", "Volume down"},
        {"vol_up", "Volume up"}};
    for (const auto& [known, name] : names) {
        if (known == command) {
            return QString::fromLatin1(name);
        }
    }
    return {};
}

/// The value of a button of the table, for a role.
template <class Row, class Value> auto ofButton(Value RemoteButton::*member) {
    return
        [member](const Row& row) { return remoteButtons.at(static_cast<std::size_t>(row.position)).*member; };
}

} // namespace

RemoteBridge::RemoteBridge(RemoteModel& model)
    : TabBridge(QStringLiteral("RemoteTab.qml")),
      model_(model),
      shortcuts_(this, &ShortcutRow::key, {{"key", &ShortcutRow::key}, {"meaning", &ShortcutRow::meaning}}) {
    std::map<RemoteSection, std::vector<Button>> rows;
    for (std::size_t i = 0; i < remoteButtons.size(); ++i) {
        rows[remoteButtons.at(i).section].push_back({static_cast<int>(i)});
    }
    for (auto& [section, buttons] : rows) {
        const std::vector<RowModel<Button, int>::Role> roles{
            {"position", &Button::position},
            {"caption", ofButton<Button>(&RemoteButton::title)},
            {"symbolName", ofButton<Button>(&RemoteButton::symbol)},
            {"tooltip", ofButton<Button>(&RemoteButton::tooltip)},
            {"spoken", [](const Button& row) {
                 return spoken(remoteButtons.at(static_cast<std::size_t>(row.position)).command);
             }}};
        sections_.try_emplace(section, this, &Button::position, roles).first->second.assign(std::move(buttons));
    }
    shortcuts_.assign({shortcutRows.begin(), shortcutRows.end()});
    follow(model.isAccessibilityEnabled, [this] {
        show(showsWarning_, !model_.isAccessibilityEnabled.get(), &RemoteBridge::showsWarningChanged);
    });
}

bool RemoteBridge::pressShortcut(int key, int modifiers, bool isRepeat) {
    if (isRepeat && key != Qt::Key_Up && key != Qt::Key_Down && key != Qt::Key_Left && key != Qt::Key_Right) {
        return false;
    }
    // The toolkit reports Shift-Tab as a key of its own.
    const bool shift = (modifiers & Qt::ShiftModifier) != 0 || key == Qt::Key_Backtab;
    return model_.pressRemoteShortcut({.key = remoteKey(key),
                                       .shift = shift,
                                       .control = (modifiers & Qt::ControlModifier) != 0,
                                       .option = (modifiers & Qt::AltModifier) != 0,
                                       .command = (modifiers & Qt::MetaModifier) != 0});
}

} // namespace velloway
