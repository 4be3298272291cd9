#pragma once

#include "fakes/FakePlatform.h"
#include "server/MessageDispatch.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace velloway::test {

/// The dispatch with all features behind it, on fakes. The server stands for its `StoreLink` alone.
struct DispatchBench {
    FakePlatform fakes;
    std::shared_ptr<HistoryStore> store = std::make_shared<HistoryStore>(fakes.host);
    std::shared_ptr<StoreLink> link = std::make_shared<StoreLink>(StoreLink{.historyStore = store});
    AppNotificationCenter notifications;
    NotificationManager notificationManager{fakes.notificationCenter, fakes.host, fakes.log};
    CallEvents callEvents{fakes.main, link, notifications, fakes.log};
    IncomingFiles incomingFiles{{.main = fakes.main,
                                 .server = fakes.server,
                                 .fileQueue = fakes.fileQueue,
                                 .link = link,
                                 .notifications = notificationManager,
                                 .host = fakes.host,
                                 .files = fakes.files,
                                 .log = fakes.log}};
    /// Keeps a link of its own, so that the other one can go.
    ClipboardSync clipboardSync{fakes.main, std::make_shared<StoreLink>(*link), fakes.pasteboard,
                                notificationManager};
    BatteryAlerts batteryAlerts{fakes.main, link, notificationManager};
    CommandRouter commandRouter{fakes.main, fakes.input, fakes.scripts, fakes.accessibility, fakes.log};
    MessageDispatch dispatch{MessageDispatch::Targets{.main = fakes.main,
                                                      .link = link,
                                                      .notifications = notifications,
                                                      .notificationManager = notificationManager,
                                                      .callEvents = callEvents,
                                                      .incomingFiles = incomingFiles,
                                                      .clipboardSync = clipboardSync,
                                                      .batteryAlerts = batteryAlerts,
                                                      .commandRouter = commandRouter,
                                                      .host = fakes.host,
                                                      .log = fakes.log}};

    void handle(std::string_view message) {
        const std::vector<char> exact(message.begin(), message.end());
        dispatch.handle({exact.data(), exact.size()}, 0);
    }

    /// Takes one message, then runs what it left for the file queue and the main queue.
    void deliver(std::string_view message) {
        handle(message);
        fakes.fileQueue.runAll();
        fakes.main.runAll();
    }
};

} // namespace velloway::test
