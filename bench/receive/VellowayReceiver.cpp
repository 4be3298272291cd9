// The whole bridge server on the real network, with a quiet desktop: port, folder for files.
// Sends the file that each line of standard input names to all connections; ends when standard input ends, and
// then tells how many events were posted. Log lines go to standard output.

#include "QuietPorts.h"
#include "features/NotificationManager.h"
#include "hosts/linux/network/AsioQueue.h"
#include "hosts/linux/network/LinuxNetwork.h"
#include "hosts/posix/PosixFiles.h"
#include "hosts/qt/StandardOutputLog.h"
#include "server/WebSocketServer.h"
#include "state/AppNotificationCenter.h"
#include "state/HistoryStore.h"

#include <cstdio>
#include <cstdlib>
#include <future>
#include <iostream>
#include <string>

using namespace velloway;
using namespace velloway::bench;

namespace {

void runOn(DispatchQueue& queue, const std::function<void()>& act) {
    std::promise<void> done;
    queue.async([&] {
        act();
        done.set_value();
    });
    done.get_future().wait();
}

} // namespace

int main(int count, char** arguments) {
    if (count != 3) {
        std::fprintf(stderr, "usage: velloway_receiver port folder\n");
        return 2;
    }
    StandardOutputLog log;
    QuietDefaults defaults(std::atoi(arguments[1]));
    QuietHost host(arguments[2]);
    QuietPasteboard pasteboard;
    QuietAccessibility accessibility;
    QuietScripts scripts;
    QuietNotifications center;
    QuietInput input;
    NotificationManager notificationManager(center, host, log);
    AppNotificationCenter notifications;
    PosixFiles files;
    std::shared_ptr<HistoryStore> store;
    std::shared_ptr<WebSocketServer> server;

    AsioQueue main("main");
    AsioQueue readingQueue("ws.reading");
    AsioQueue queue("ws.server");
    LinuxNetwork network(queue);
    runOn(main, [&] {
        store = std::make_shared<HistoryStore>(host);
        server = WebSocketServer::make({.main = main,
                                        .queue = queue,
                                        .readingQueue = readingQueue,
                                        .network = network,
                                        .userDefaults = defaults,
                                        .pasteboard = pasteboard,
                                        .input = input,
                                        .scripts = scripts,
                                        .accessibility = accessibility,
                                        .host = host,
                                        .files = files,
                                        .log = log,
                                        .notificationManager = notificationManager,
                                        .notifications = notifications});
        server->setHistoryStore(store);
        server->start();
    });
    for (std::string path; std::getline(std::cin, path);) {
        server->sendFile(path);
    }
    runOn(main, [] {});
    std::fprintf(stderr, "posted %ld\n", input.posted.load());
    // The process ends here as the program does: without a word to anybody.
    std::_Exit(0);
}
