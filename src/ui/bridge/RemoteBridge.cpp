#include "bridge/RemoteBridge.h"

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
            {"command", ofButton<Button>(&RemoteButton::command)}};
        sections_.try_emplace(section, this, &Button::position, roles).first->second.assign(std::move(buttons));
    }
    shortcuts_.assign({shortcutRows.begin(), shortcutRows.end()});
    follow(model.isAccessibilityEnabled, [this] {
        show(showsWarning_, !model_.isAccessibilityEnabled.get(), &RemoteBridge::showsWarningChanged);
    });
}

bool RemoteBridge::pressRemoteShortcut(int key, int modifiers) {
    // The toolkit reports Shift-Tab as a key of its own.
    const bool shift = (modifiers & Qt::ShiftModifier) != 0 || key == Qt::Key_Backtab;
    return model_.pressRemoteShortcut({.key = remoteKey(key),
                                       .shift = shift,
                                       .control = (modifiers & Qt::ControlModifier) != 0,
                                       .option = (modifiers & Qt::AltModifier) != 0,
                                       .command = (modifiers & Qt::MetaModifier) != 0});
}

} // namespace velloway
