#include "tabs/SettingsView.h"

namespace velloway {

std::shared_ptr<SettingsView> SettingsView::make(const Dependencies& dependencies) {
    return std::shared_ptr<SettingsView>(new SettingsView(dependencies));
}

SettingsView::SettingsView(const Dependencies& dependencies)
    : dependencies_(dependencies),
      history(dependencies_.history),
      selectedTab(dependencies_.userDefaults, "selectedSettingsTab", tabIndex::settings),
      phone(dependencies_),
      calls(dependencies_, phone),
      sms(dependencies_, phone),
      fileDrop(dependencies_),
      notifications(dependencies_, phone),
      remote(dependencies_),
      clipboard(dependencies_),
      settings(dependencies_),
      info(dependencies_) {}

void SettingsView::viewAppears() {
    sms.appears();
    remote.refreshAccessibilityStatus();
    settings.appears();
}

void SettingsView::tabAppears(std::int64_t tab) {
    switch (tab) {
    case tabIndex::sms:
        return sms.appears();
    case tabIndex::settings:
        return settings.appears();
    default:
        return;
    }
}

} // namespace velloway
