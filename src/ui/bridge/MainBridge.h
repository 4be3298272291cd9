#pragma once

#include "bridge/CallsBridge.h"
#include "bridge/ClipboardBridge.h"
#include "bridge/FileDropBridge.h"
#include "bridge/InfoBridge.h"
#include "bridge/NotificationsBridge.h"
#include "bridge/RemoteBridge.h"
#include "bridge/SettingsBridge.h"
#include "bridge/SmsBridge.h"
#include "tabs/SettingsView.h"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

namespace velloway {

/// Shows a `SettingsView` to QML: the sidebar, and the bridge of the tab that is shown. Main thread only.
class MainBridge : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The window has it.")
    Q_PROPERTY(QAbstractItemModel* tabs READ tabs CONSTANT)
    Q_PROPERTY(bool showsLabels READ showsLabels NOTIFY showsLabelsChanged)
    /// The row of the sidebar to highlight, or -1.
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectedRowChanged)
    /// The sidebar can be dragged away.
    Q_PROPERTY(bool showsSidebar READ showsSidebar WRITE setShowsSidebar NOTIFY showsSidebarChanged)
    Q_PROPERTY(velloway::TabBridge* tab READ tab NOTIFY tabChanged)
    /// The view that shows `tab`.
    Q_PROPERTY(QString tabFile READ tabFile NOTIFY tabChanged)

public:
    explicit MainBridge(std::shared_ptr<SettingsView> view);

    SettingsView& view() { return *view_; }

    /// The window came on screen or left it.
    void setOnScreen(bool onScreen);

    QAbstractItemModel* tabs() { return &tabs_; }
    bool showsLabels() const { return showsLabels_; }
    int selectedRow() const { return selectedRow_; }
    bool showsSidebar() const { return view_->columnVisibility.get() != ColumnVisibility::detailOnly; }
    void setShowsSidebar(bool shows);
    TabBridge* tab() const { return tab_; }
    QString tabFile() const { return tab_->file(); }

    Q_INVOKABLE void setWidth(double width);
    /// `row` is a position in the sidebar; one outside of it is ignored.
    Q_INVOKABLE void select(int row);

signals:
    void showsLabelsChanged();
    void selectedRowChanged();
    void showsSidebarChanged();
    void tabChanged();
    /// A view emits it when a row was chosen with the mouse.
    void tabChosen();

private:
    void selectedTabChanged();
    void showTab();

    std::shared_ptr<SettingsView> view_;
    CallsBridge calls_;
    SmsBridge sms_;
    FileDropBridge fileDrop_;
    NotificationsBridge notifications_;
    RemoteBridge remote_;
    ClipboardBridge clipboard_;
    SettingsBridge settings_;
    InfoBridge info_;
    const std::map<int, std::reference_wrapper<TabBridge>> bridges_;
    RowModel<TabRow, int> tabs_;
    TabBridge* tab_ = nullptr;
    int selectedRow_ = -1;
    bool showsLabels_ = true;
    bool onScreen_ = false;
    bool isScheduled_ = false;
    std::int64_t tabThatAppeared_ = -1;
    Subscription selectedTab_;
    Subscription columnVisibility_;
};

} // namespace velloway
