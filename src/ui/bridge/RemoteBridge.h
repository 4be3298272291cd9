#pragma once

#include "bridge/RowModel.h"
#include "bridge/TabBridge.h"
#include "tabs/remote/RemoteModel.h"

#include <map>
#include <string_view>

namespace velloway {

class RemoteBridge : public TabBridge {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window has it.")
    Q_PROPERTY(bool showsWarning READ showsWarning NOTIFY showsWarningChanged)
    Q_PROPERTY(QAbstractItemModel* media READ media CONSTANT)
    Q_PROPERTY(QAbstractItemModel* volume READ volume CONSTANT)
    /// Up, left, centre, right, down.
    Q_PROPERTY(QAbstractItemModel* dPad READ dPad CONSTANT)
    Q_PROPERTY(QAbstractItemModel* core READ core CONSTANT)
    Q_PROPERTY(QAbstractItemModel* system READ system CONSTANT)
    Q_PROPERTY(QAbstractItemModel* shortcuts READ shortcuts CONSTANT)

public:
    explicit RemoteBridge(RemoteModel& model);

    bool showsWarning() const { return showsWarning_; }
    QAbstractItemModel* media() { return &sections_.at(RemoteSection::media); }
    QAbstractItemModel* volume() { return &sections_.at(RemoteSection::volume); }
    QAbstractItemModel* dPad() { return &sections_.at(RemoteSection::dPad); }
    QAbstractItemModel* core() { return &sections_.at(RemoteSection::core); }
    QAbstractItemModel* system() { return &sections_.at(RemoteSection::system); }
    QAbstractItemModel* shortcuts() { return &shortcuts_; }

    Q_INVOKABLE void pressRemoteButton(int position) {
        model_.pressRemoteButton(static_cast<std::size_t>(position));
    }
    /// Held arrow keys repeat, other keys do not.
    bool pressShortcut(int key, int modifiers, bool isRepeat) override;
    Q_INVOKABLE void openAccessibilitySettings() { model_.openAccessibilitySettings(); }
    Q_INVOKABLE void refreshAccessibilityStatus() { model_.refreshAccessibilityStatus(); }

signals:
    void showsWarningChanged();

private:
    /// A position in the table of all buttons.
    struct Button {
        int position = 0;

        bool operator==(const Button&) const = default;
    };

    RemoteModel& model_;
    bool showsWarning_ = false;
    std::map<RemoteSection, RowModel<Button, int>> sections_;
    RowModel<ShortcutRow, std::string_view> shortcuts_;
};

} // namespace velloway
