#pragma once

#include "fakes/ServerHarness.h"
#include "tabs/SettingsView.h"
#include "tabs/Texts.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace velloway::test {

/// The text of that name; empty when the table has none.
template <class Table> std::string_view textOf(const Table& table, std::string_view name) {
    for (const TextEntry& entry : table) {
        if (entry.name == name) {
            return entry.text;
        }
    }
    return {};
}

/// The state behind the main window with a real server on fakes, and a phone that is connected from the start.
struct TabHarness {
    ServerHarness link;
    FakePlatform& on = link.on;
    HistoryStore& store = *link.store;
    bool isLoginEnabled = false;
    std::vector<bool> loginChanges;
    std::string localIP = "10.0.0.5";
    std::shared_ptr<FakeConnection> phone;
    std::shared_ptr<SettingsView> view;

    TabHarness() {
        link.listen();
        phone = link.connect();
        on.journal.take();
        makeView();
    }

    void makeView() {
        view = SettingsView::make({
            .history = link.store,
            .server = *link.server,
            .userDefaults = on.userDefaults,
            .notificationCenter = on.notificationCenter,
            .accessibility = on.accessibility,
            .pasteboard = on.pasteboard,
            .workspace = on.workspace,
            .windows = on.windows,
            .host = on.host,
            .notifications = link.notifications,
            .main = on.main,
            .localIP = [this] { return localIP; },
            .isLaunchAtLoginEnabled = [this] { return isLoginEnabled; },
            .setLaunchAtLogin = [this](bool enabled) { loginChanges.push_back(enabled); },
        });
    }

    /// What the phone has got since the last call.
    std::vector<std::string> takeSent() {
        on.drain();
        std::vector<std::string> texts;
        for (const auto& sent : std::exchange(phone->sent, {})) {
            texts.push_back(sent.text);
        }
        return texts;
    }
};

} // namespace velloway::test
