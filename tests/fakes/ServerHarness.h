#pragma once

#include "fakes/FakePlatform.h"
#include "features/NotificationManager.h"
#include "server/WebSocketServer.h"
#include "state/AppNotificationCenter.h"
#include "state/HistoryStore.h"

#include <memory>
#include <string>
#include <vector>

namespace velloway::test {

/// A real server with a store, on fakes.
struct ServerHarness {
    FakePlatform on;
    AppNotificationCenter notifications;
    NotificationManager notificationManager{on.notificationCenter, on.host, on.log};
    std::shared_ptr<HistoryStore> store = std::make_shared<HistoryStore>(on.host);
    std::shared_ptr<WebSocketServer> server = WebSocketServer::make({
        .main = on.main,
        .queue = on.server,
        .fileQueue = on.fileQueue,
        .readingQueue = on.server,
        .network = on.network,
        .userDefaults = on.userDefaults,
        .pasteboard = on.pasteboard,
        .input = on.input,
        .scripts = on.scripts,
        .accessibility = on.accessibility,
        .host = on.host,
        .files = on.files,
        .memory = on.memory,
        .log = on.log,
        .notificationManager = notificationManager,
        .notifications = notifications,
    });
    std::vector<std::string> statuses;
    std::vector<std::shared_ptr<FakeConnection>> phones;

    ServerHarness() {
        server->setHistoryStore(store);
        server->setOnStatusChange([this](const std::string& status) { statuses.push_back(status); });
    }
    ~ServerHarness() {
        for (const auto& phone : phones) {
            phone->report(ConnectionState::cancelled);
        }
    }

    /// Starts the server and lets its listener become ready.
    void listen() {
        server->start();
        on.network.listener().report(ListenerState::ready);
        on.drain();
    }

    std::shared_ptr<FakeConnection> connectUnready(const std::string& host = "192.168.1.20") {
        auto phone = std::make_shared<FakeConnection>(Endpoint{.host = host, .description = host + ":50000"},
                                                      &on.journal);
        phones.push_back(phone);
        on.network.listener().connect(phone);
        return phone;
    }

    /// A phone that has finished its handshake. Its welcome is taken away.
    std::shared_ptr<FakeConnection> connect(const std::string& host = "192.168.1.20") {
        auto phone = connectUnready(host);
        phone->report(ConnectionState::ready);
        on.drain();
        phone->sent.clear();
        return phone;
    }

    /// Delivers one text message and lets everything that follows happen.
    void receive(FakeConnection& phone, std::string_view message) {
        phone.deliver(message);
        on.drain();
    }
};

} // namespace velloway::test
