#pragma once

#include "hosts/linux/desktop/TrayWatcher.h"
#include "platform/StatusItem.h"

#include <QMenu>
#include <QSystemTrayIcon>
#include <QTimer>

#include <memory>
#include <optional>

class QAction;

namespace velloway {

/// The item in the tray of the desktop. It stands as soon as there is a tray, and again when the tray comes
/// back. Trays on the message bus are preferred; where none has shown up after a while, an X11 tray serves.
class LinuxStatusItem : public QObject, public StatusItem {
    Q_OBJECT

public:
    /// How long a desktop that is just starting has to bring up its tray, in milliseconds.
    static constexpr int defaultTrayTimeout = 2000;

    explicit LinuxStatusItem(int trayTimeout = defaultTrayTimeout);
    ~LinuxStatusItem() override;

    void create() override;
    bool hasButton() const override { return true; }
    bool hasImage(const StatusImage& image) const override;
    void setImage(const StatusImage& image) override;
    void setMenu(const std::vector<MenuItem>& items) override;
    void setItemTitle(int tag, const std::string& title) override;

    /// Whether the user can see the item now.
    bool isReachable() const;
    const std::vector<MenuItem>& items() const { return items_; }
    /// Does what the user asked for by choosing the item.
    static void choose(const MenuItem& item);

signals:
    void reachabilityChanged();
    /// The whole menu has been replaced.
    void menuChanged();
    void itemTitleChanged(int index);
    /// A click on the item itself, where the menu can't be shown for it.
    void activated();
    /// The time for a tray to show up is over, whether or not one has. Comes once, after `create`.
    void trayWaitEnded();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void addTray();
    void removeTray();
    void tryX11Tray();
    void tintIcon();
    void iconClicked(QSystemTrayIcon::ActivationReason reason);

    TrayWatcher watcher_;
    QTimer trayTimer_;
    std::vector<MenuItem> items_;
    /// One per item, in the same order.
    std::vector<QAction*> actions_;
    std::unique_ptr<QMenu> menu_;
    std::optional<StatusImage> image_;
    bool isCreated_ = false;
    bool isX11Tray_ = false;
    std::unique_ptr<QSystemTrayIcon> tray_;
};

} // namespace velloway
