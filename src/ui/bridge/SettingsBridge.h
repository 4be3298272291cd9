#pragma once

#include "bridge/PropertyBag.h"
#include "bridge/RowModel.h"
#include "tabs/SettingsView.h"

#include <QAbstractItemModel>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <bitset>
#include <memory>
#include <string>
#include <vector>

namespace velloway {

/// Shows a `SettingsView` to QML: its fields and values as properties, its lists as models, its operations as
/// invokable functions. Main thread only.
///
/// A value is read again only while the tab that shows it is on screen, and once however many changes came
/// together.
class SettingsBridge : public QObject {
    Q_OBJECT
    Q_PROPERTY(QObject* fields READ fields CONSTANT)
    Q_PROPERTY(QObject* shown READ shown CONSTANT)
    Q_PROPERTY(QVariantMap texts READ texts CONSTANT)
    Q_PROPERTY(QVariantList tabs READ tabs CONSTANT)
    Q_PROPERTY(QVariantList dialButtons READ dialButtons CONSTANT)
    Q_PROPERTY(QVariantList simSegments READ simSegments CONSTANT)
    Q_PROPERTY(QVariantList remoteButtons READ remoteButtons CONSTANT)
    Q_PROPERTY(QVariantList shortcuts READ shortcuts CONSTANT)
    Q_PROPERTY(QAbstractItemModel* threads READ threads CONSTANT)
    Q_PROPERTY(QAbstractItemModel* bubbles READ bubbles CONSTANT)
    Q_PROPERTY(QAbstractItemModel* recentCalls READ recentCalls CONSTANT)
    Q_PROPERTY(QAbstractItemModel* notifications READ notifications CONSTANT)
    Q_PROPERTY(QAbstractItemModel* transfers READ transfers CONSTANT)
    Q_PROPERTY(QAbstractItemModel* clipboard READ clipboard CONSTANT)

public:
    explicit SettingsBridge(std::shared_ptr<SettingsView> view, QObject* parent = nullptr);
    ~SettingsBridge() override;

    SettingsView& view() { return *view_; }

    /// The window came on screen or left it.
    void setOnScreen(bool onScreen);
    /// Reads what has changed since; otherwise that happens when control is back with the event loop.
    void refresh();

    QObject* fields() { return &fields_; }
    QObject* shown() { return &shown_; }
    QVariantMap texts() const;
    QVariantList tabs() const;
    QVariantList dialButtons() const;
    QVariantList simSegments() const;
    QVariantList remoteButtons() const;
    QVariantList shortcuts() const;
    QAbstractItemModel* threads() { return &threads_; }
    QAbstractItemModel* bubbles() { return &bubbles_; }
    QAbstractItemModel* recentCalls() { return &recentCalls_; }
    QAbstractItemModel* notifications() { return &notifications_; }
    QAbstractItemModel* transfers() { return &transfers_; }
    QAbstractItemModel* clipboard() { return &clipboard_; }

    Q_INVOKABLE bool showsLabels(double width) const;

    Q_INVOKABLE void refreshSmsHistory() { view_->refreshSmsHistory(); }
    Q_INVOKABLE void clearSearch() { view_->clearSearch(); }
    Q_INVOKABLE void startNewMessage() { view_->startNewMessage(); }
    Q_INVOKABLE void openConversation(const QString& address) { view_->openConversation(fromQt(address)); }
    Q_INVOKABLE void sendChatMessage() { view_->sendChatMessage(); }

    Q_INVOKABLE void pressDialButton(int index) { view_->pressDialButton(static_cast<std::size_t>(index)); }
    Q_INVOKABLE void deleteLastDigit() { view_->deleteLastDigit(); }
    Q_INVOKABLE void callBack(const QString& number) { view_->callBack(fromQt(number)); }
    Q_INVOKABLE void startCall() { view_->startCall(); }
    /// A key on the dial pad; true when it was handled.
    Q_INVOKABLE bool pressKey(int key, const QString& text, bool isRepeat);

    Q_INVOKABLE void openReply(const QString& id);
    Q_INVOKABLE void sendReply(const QString& id);
    Q_INVOKABLE void cancelReply() { view_->cancelReply(); }
    Q_INVOKABLE void clearNotifications() { view_->clearNotifications(); }

    Q_INVOKABLE void selectFileAndSend() { view_->selectFileAndSend(); }
    Q_INVOKABLE void revealFile(const QString& id);
    Q_INVOKABLE void clearFileTransfers() { view_->clearFileTransfers(); }
    Q_INVOKABLE void sendCurrentClipboard() { view_->sendCurrentClipboard(); }
    Q_INVOKABLE void copyToClipboard(const QString& id);
    Q_INVOKABLE void clearClipboard() { view_->clearClipboard(); }

    Q_INVOKABLE void pressRemoteButton(int index) { view_->pressRemoteButton(static_cast<std::size_t>(index)); }
    /// A key on the Remote tab; true when it pressed a button.
    Q_INVOKABLE bool pressRemoteShortcut(int key, int modifiers);
    Q_INVOKABLE void openAccessibilitySettings() { view_->openAccessibilitySettings(); }
    Q_INVOKABLE void refreshAccessibilityStatus() { view_->refreshAccessibilityStatus(); }

    Q_INVOKABLE void copyLocalIP() { view_->copyLocalIP(); }
    Q_INVOKABLE void commitPort(const QString& text);
    Q_INVOKABLE void restartServer() { view_->restartServer(); }
    Q_INVOKABLE void requestNotificationPermission() { view_->requestNotificationPermission(); }
    Q_INVOKABLE void openNotificationSettings() { view_->openNotificationSettings(); }
    Q_INVOKABLE void openProfile() { view_->openProfile(); }

private:
    using Shown = SettingsView::Shown;

    /// A bubble whose time is put into words only when it comes in sight: a chat can be thousands of them long.
    struct ChatRow {
        double date = 0;
        std::string body;
        bool isOutgoing = false;

        bool operator==(const ChatRow&) const = default;
    };
    static constexpr std::size_t shownCount = static_cast<std::size_t>(Shown::settings) + 1;

    void follow(Shown value);
    void changed(Shown value);
    bool isOnScreen(Shown value) const;
    void read(Shown value);
    void readSmsList();
    void readSmsChat();
    void readSettings();

    std::shared_ptr<SettingsView> view_;
    PropertyBag fields_;
    PropertyBag shown_;
    RowModel<SmsThreadRow, std::string> threads_;
    RowModel<ChatRow, double> bubbles_;
    RowModel<RecentCallRow, double> recentCalls_;
    RowModel<NotificationRow, std::string> notifications_;
    RowModel<FileTransferRow, std::string> transfers_;
    RowModel<ClipboardRow, std::string> clipboard_;
    std::bitset<shownCount> stale_;
    bool onScreen_ = false;
    bool isScheduled_ = false;
    std::int64_t tabThatAppeared_ = -1;
    std::vector<Subscription> subscriptions_;
};

} // namespace velloway
