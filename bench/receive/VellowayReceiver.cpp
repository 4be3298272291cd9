// The whole bridge server on the real network, with a quiet desktop: port, folder for files.
// Sends the file that each line of standard input names to all connections; ends when standard input ends, and
// then prints how many events were posted. Log lines go to standard output. The queues are joined as in the
// program.

#include "QuietPorts.h"
#include "features/NotificationManager.h"
#include "hosts/linux/desktop/LinuxMemory.h"
#include "hosts/linux/desktop/ThreadSchedule.h"
#include "hosts/linux/network/AsioQueue.h"
#include "hosts/linux/network/LinuxNetwork.h"
#include "hosts/posix/PosixFiles.h"
#include "hosts/qt/QtMainQueue.h"
#include "hosts/qt/StandardOutputLog.h"
#include "server/WebSocketServer.h"
#include "state/AppNotificationCenter.h"
#include "state/HistoryStore.h"

#include <QCoreApplication>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>

using namespace velloway;
using namespace velloway::bench;

int main(int count, char** arguments) {
    if (count != 3) {
        std::fprintf(stderr, "usage: velloway_receiver port folder\n");
        return 2;
    }
    StandardOutputLog log;
    const QCoreApplication application(count, arguments);
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
    LinuxMemory memory;
    QtMainQueue main;
    takeShortTurns();
    AsioQueue fileQueue("ws.files", {.began = letOthersGoFirst});
    AsioQueue readingQueue("ws.reading");
    AsioQueue queue("ws.server", {.began =
                                      [] {
                                          StandardOutputLog::gatherOnThisThread();
                                          QtMainQueue::gatherOnThisThread();
                                      },
                                  .ended =
                                      [&] {
                                          main.flush();
                                          log.flush();
                                      }});
    LinuxNetwork network(queue);
    auto store = std::make_shared<HistoryStore>(host);
    const auto server = WebSocketServer::make({.main = main,
                                               .queue = queue,
                                               .fileQueue = fileQueue,
                                               .readingQueue = readingQueue,
                                               .network = network,
                                               .userDefaults = defaults,
                                               .pasteboard = pasteboard,
                                               .input = input,
                                               .scripts = scripts,
                                               .accessibility = accessibility,
                                               .host = host,
                                               .files = files,
                                               .memory = memory,
                                               .log = log,
                                               .notificationManager = notificationManager,
                                               .notifications = notifications});
    server->setHistoryStore(store);
    server->start();
    std::jthread commands([&] {
        for (std::string path; std::getline(std::cin, path);) {
            main.async([&server, path] { server->sendFile(path); });
        }
        main.async([] { QCoreApplication::quit(); });
    });
    QCoreApplication::exec();
    queue.end(std::chrono::seconds(1));
    fileQueue.finish(std::chrono::seconds(10));
    std::fprintf(stderr, "posted %ld\n", input.posted.load());
    // The process ends here as the program does: without a word to anybody.
    std::_Exit(0);
}
