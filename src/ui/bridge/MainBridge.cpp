#include "bridge/MainBridge.h"

#include <QMetaObject>

#include <utility>

namespace velloway {

namespace {

int rowOf(std::int64_t selectedTab) {
    const TabRow* row = velloway::selectedRow(selectedTab);
    return row ? static_cast<int>(row - tabRows.data()) : -1;
}

} // namespace

MainBridge::MainBridge(std::shared_ptr<SettingsView> view)
    : view_(std::move(view)),
      calls_(view_->calls, view_->phone),
      sms_(view_->sms, view_->phone),
      fileDrop_(view_->fileDrop),
      notifications_(view_->notifications),
      remote_(view_->remote),
      clipboard_(view_->clipboard),
      settings_(view_->settings),
      info_(view_->info),
      bridges_{{tabIndex::call, calls_},        {tabIndex::sms, sms_},
               {tabIndex::fileDrop, fileDrop_}, {tabIndex::notifications, notifications_},
               {tabIndex::remote, remote_},     {tabIndex::clipboard, clipboard_},
               {tabIndex::settings, settings_}, {tabIndex::info, info_}},
      tabs_(this, &TabRow::index,
            {{"tabIndex", &TabRow::index}, {"title", &TabRow::title}, {"symbol", &TabRow::symbol}}),
      selectedTab_(view_->selectedTab.observe([this](std::int64_t) { selectedTabChanged(); })),
      columnVisibility_(
          view_->columnVisibility.observe([this](ColumnVisibility) { emit showsSidebarChanged(); })) {
    tabs_.assign({tabRows.begin(), tabRows.end()});
    showTab();
}

void MainBridge::setOnScreen(bool onScreen) {
    const bool appears = onScreen && !onScreen_;
    onScreen_ = onScreen;
    if (appears) {
        tabThatAppeared_ = view_->selectedTab.get();
        view_->viewAppears();
        view_->tabAppears(tabThatAppeared_);
        showTab();
    } else if (!onScreen) {
        tab_->setOnScreen(false);
    }
}

void MainBridge::selectedTabChanged() {
    if (onScreen_ && !std::exchange(isScheduled_, true)) {
        QMetaObject::invokeMethod(
            this,
            [this] {
                isScheduled_ = false;
                if (onScreen_) {
                    showTab();
                }
            },
            Qt::QueuedConnection);
    }
}

void MainBridge::showTab() {
    const std::int64_t selected = view_->selectedTab.get();
    if (onScreen_ && std::exchange(tabThatAppeared_, selected) != selected) {
        view_->tabAppears(selected);
    }
    TabBridge* next = &bridges_.at(shownTab(selected)).get();
    const bool isOther = next != tab_;
    if (tab_ && isOther) {
        tab_->setOnScreen(false);
    }
    // Before the view of the tab is made: its first picture is the right one.
    next->setOnScreen(true);
    if (!onScreen_) {
        next->setOnScreen(false);
    }
    tab_ = next;
    if (isOther) {
        emit tabChanged();
    }
    if (std::exchange(selectedRow_, rowOf(selected)) != selectedRow_) {
        emit selectedRowChanged();
    }
}

void MainBridge::setWidth(double width) {
    const bool shows = AdaptiveLabelStyle::forWidth(width).showLabels;
    if (std::exchange(showsLabels_, shows) != shows) {
        emit showsLabelsChanged();
    }
}

void MainBridge::setShowsSidebar(bool shows) {
    if (shows != showsSidebar()) {
        view_->columnVisibility.set(shows ? ColumnVisibility::all : ColumnVisibility::detailOnly);
    }
}

void MainBridge::select(int row) {
    if (row >= 0 && row < static_cast<int>(tabRows.size())) {
        view_->selectedTab.set(tabRows.at(static_cast<std::size_t>(row)).index);
    }
}

} // namespace velloway
