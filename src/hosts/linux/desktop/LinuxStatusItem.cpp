#include "hosts/linux/desktop/LinuxStatusItem.h"

#include "hosts/linux/desktop/StatusIcons.h"

#include <QAction>
#include <QCoreApplication>
#include <QCursor>
#include <QEvent>
#include <QGuiApplication>

#include <algorithm>
#include <cstdlib>
#include <utility>
#include <xcb/xcb.h>

namespace velloway {

namespace {

xcb_connection_t* x11Connection() {
    auto* native = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return native != nullptr ? native->connection() : nullptr;
}

/// Qt's own question for this would settle for good that there is no tray on the bus.
bool hasX11Tray() {
    xcb_connection_t* connection = x11Connection();
    if (connection == nullptr) {
        return false;
    }
    constexpr std::string_view name = "_NET_SYSTEM_TRAY_S0";
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
        xcb_intern_atom_reply(
            connection, xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
            nullptr),
        &std::free);
    if (!atom) {
        return false;
    }
    const std::unique_ptr<xcb_get_selection_owner_reply_t, decltype(&std::free)> owner(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, atom->atom), nullptr),
        &std::free);
    return owner && owner->owner != XCB_NONE;
}

QString menuText(const std::string& title) {
    return QString::fromStdString(title).replace('&', QLatin1String("&&"));
}

} // namespace

LinuxStatusItem::LinuxStatusItem(int trayTimeout) : menu_(std::make_unique<QMenu>()) {
    trayTimer_.setSingleShot(true);
    trayTimer_.setInterval(trayTimeout);
    connect(&trayTimer_, &QTimer::timeout, this, [this] {
        tryX11Tray();
        emit trayWaitEnded();
    });
    connect(&watcher_, &TrayWatcher::trayAppeared, this, &LinuxStatusItem::addTray);
    connect(&watcher_, &TrayWatcher::trayGone, this, &LinuxStatusItem::removeTray);
    qGuiApp->installEventFilter(this);
}

LinuxStatusItem::~LinuxStatusItem() = default;

void LinuxStatusItem::create() {
    isCreated_ = true;
    trayTimer_.start();
    // Once the caller has set the image and the menu too.
    QTimer::singleShot(0, this, [this] {
        if (watcher_.isTrayThere()) {
            addTray();
        }
    });
}

bool LinuxStatusItem::hasImage(const StatusImage& image) const {
    return hasStatusImage(image);
}

void LinuxStatusItem::setImage(const StatusImage& image) {
    image_ = image;
    tintIcon();
}

void LinuxStatusItem::setMenu(const std::vector<MenuItem>& items) {
    items_ = items;
    for (QAction* action : std::exchange(actions_, {})) {
        // Later: one of them may be what called for this.
        menu_->removeAction(action);
        action->deleteLater();
    }
    for (const MenuItem& item : items_) {
        QAction* action = item.isSeparator ? menu_->addSeparator() : menu_->addAction(menuText(item.title));
        actions_.push_back(action);
        if (item.isSeparator) {
            continue;
        }
        action->setEnabled(item.isEnabled);
        if (!item.keyEquivalent.empty()) {
            // Only shown: the action belongs to no window that could take keys for it.
            action->setShortcut(
                QKeySequence(QLatin1String("Ctrl+") + QString::fromStdString(item.keyEquivalent)));
        }
        connect(action, &QAction::triggered, this, [item] { choose(item); });
    }
    emit menuChanged();
}

void LinuxStatusItem::setItemTitle(int tag, const std::string& title) {
    const auto found =
        std::find_if(items_.begin(), items_.end(), [tag](const MenuItem& item) { return item.tag == tag; });
    if (found == items_.end()) {
        return;
    }
    found->title = title;
    const auto index = found - items_.begin();
    if (!found->isSeparator) {
        actions_[static_cast<std::size_t>(index)]->setText(menuText(title));
    }
    emit itemTitleChanged(static_cast<int>(index));
}

bool LinuxStatusItem::isReachable() const {
    return tray_ != nullptr && (isX11Tray_ ? hasX11Tray() : watcher_.isTrayThere());
}

void LinuxStatusItem::choose(const MenuItem& item) {
    if (item.onChosen) {
        const auto chosen = item.onChosen;
        chosen();
    } else if (item.action == MenuItem::Action::terminate) {
        QCoreApplication::quit();
    }
}

bool LinuxStatusItem::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qGuiApp && event->type() == QEvent::ApplicationPaletteChange) {
        tintIcon();
    }
    return false;
}

void LinuxStatusItem::addTray() {
    // Qt looks for a tray once, when the first of these is made, and keeps the answer for the life of the
    // process. That is why none is made before there is a tray.
    if (!isCreated_ || tray_) {
        return;
    }
    tray_ = std::make_unique<QSystemTrayIcon>();
    tray_->setToolTip(QGuiApplication::applicationDisplayName());
    tray_->setContextMenu(menu_.get());
    connect(tray_.get(), &QSystemTrayIcon::activated, this, &LinuxStatusItem::iconClicked);
    tintIcon();
    tray_->show();
    emit reachabilityChanged();
}

void LinuxStatusItem::removeTray() {
    if (tray_ && !isX11Tray_) {
        tray_.reset();
        emit reachabilityChanged();
    }
}

void LinuxStatusItem::tryX11Tray() {
    if (!tray_ && hasX11Tray()) {
        isX11Tray_ = true;
        addTray();
    }
}

void LinuxStatusItem::tintIcon() {
    if (tray_ && image_) {
        tray_->setIcon(statusIcon(*image_, panelTextColour()));
    }
}

void LinuxStatusItem::iconClicked(QSystemTrayIcon::ActivationReason reason) {
    if (reason != QSystemTrayIcon::Trigger) {
        return;
    }
    if (x11Connection() != nullptr) {
        menu_->popup(QCursor::pos());
    } else {
        emit activated();
    }
}

} // namespace velloway
