// Measures the time from just before a pointer move is written to the socket until its event is posted, at
// 1,000 moves a second: through the sockets, the server, the dispatch, the router, the log (a file) and both
// queues.
//
// The log goes to a file and the figures to standard error. The queues are joined as in the program.
//
//   pointer_latency [seconds for each case, 5 by default]

#include "PhoneSocket.h"
#include "fakes/FakeDesktop.h"
#include "fakes/FakeInput.h"
#include "fakes/FakeUserDefaults.h"
#include "fakes/FakeUserNotificationCenter.h"
#include "features/NotificationManager.h"
#include "hosts/linux/desktop/LinuxMemory.h"
#include "hosts/linux/network/AsioQueue.h"
#include "hosts/linux/network/LinuxNetwork.h"
#include "hosts/posix/PosixFiles.h"
#include "hosts/qt/QtMainQueue.h"
#include "hosts/qt/StandardOutputLog.h"
#include "server/WebSocketServer.h"
#include "state/AppNotificationCenter.h"
#include "state/HistoryStore.h"

#include <QCoreApplication>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace velloway::bench {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int movesPerSecond = 1'000;
constexpr std::size_t chunkBytes = std::size_t{1} << 20;

/// Notes when each move of the pointer arrives. Main thread, but for the counter.
class TimingInputEvents : public test::FakeInputEvents {
public:
    void movePointer(double, double) override {
        const std::size_t index = count_.load(std::memory_order_relaxed);
        if (index < postedAt_.size()) {
            postedAt_[index] = Clock::now();
        }
        count_.store(index + 1, std::memory_order_release);
    }

    /// Before the first move of a case is sent.
    void expect(std::size_t moves) {
        postedAt_.assign(moves, {});
        count_.store(0, std::memory_order_release);
    }
    bool hasAll() const { return count_.load(std::memory_order_acquire) >= postedAt_.size(); }
    const std::vector<Clock::time_point>& postedAt() const { return postedAt_; }

private:
    std::vector<Clock::time_point> postedAt_;
    std::atomic<std::size_t> count_ = 0;
};

/// Sends one file after the other, at so many MiB a second or as fast as they are taken, until told to stop.
void sendFiles(std::uint16_t port, int mebibytesPerSecond, const std::atomic<bool>& isStopping) {
    PhoneSocket phone(port);
    const std::string chunk = R"({"action":"file_chunk","fileName":"bench.bin","fileData":")" +
                              std::string(chunkBytes / 3 * 4, 'A') + R"(","isLast":false})";
    constexpr int chunksPerFile = 256;
    const auto start = Clock::now();
    for (int sent = 0; !isStopping; ++sent) {
        if (sent % chunksPerFile == 0) {
            phone.send(R"({"action":"file_transfer_start","fileName":"bench.bin","fileSize":268435456})");
        }
        phone.send(chunk);
        if (mebibytesPerSecond > 0) {
            std::this_thread::sleep_until(start + std::chrono::nanoseconds(std::chrono::seconds(1)) *
                                                      (sent + 1) / mebibytesPerSecond);
        }
    }
}

void report(const char* name, const std::vector<Clock::time_point>& sentAt,
            const std::vector<Clock::time_point>& postedAt) {
    std::vector<double> microseconds(sentAt.size());
    for (std::size_t index = 0; index < sentAt.size(); ++index) {
        microseconds[index] =
            std::chrono::duration<double, std::micro>(postedAt[index] - sentAt[index]).count();
    }
    std::sort(microseconds.begin(), microseconds.end());
    std::fprintf(stderr, "%-34s %8zu moves   median %9.1f us   p99 %9.1f us   worst %9.1f us\n", name,
                 microseconds.size(), microseconds[microseconds.size() / 2],
                 microseconds[microseconds.size() * 99 / 100], microseconds.back());
}

/// False when not every move has arrived.
bool measure(const char* name, std::uint16_t port, TimingInputEvents& events, int seconds) {
    PhoneSocket phone(port);
    const auto moves = static_cast<std::size_t>(seconds * movesPerSecond);
    std::vector<Clock::time_point> sentAt(moves);
    events.expect(moves);
    const auto start = Clock::now() + std::chrono::milliseconds(100);
    for (std::size_t index = 0; index < moves; ++index) {
        std::this_thread::sleep_until(start + std::chrono::nanoseconds(std::chrono::seconds(1)) * index /
                                                  movesPerSecond);
        sentAt[index] = Clock::now();
        phone.send(R"({"action":"remote_control","command":"move","type":"mouse_move","dx":1.5,"dy":-0.5})");
    }
    const auto deadline = Clock::now() + std::chrono::seconds(10);
    while (!events.hasAll()) {
        if (Clock::now() > deadline) {
            std::fprintf(stderr, "%s: moves were lost\n", name);
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    report(name, sentAt, events.postedAt());
    return true;
}

bool measureWithFiles(const char* name, std::uint16_t port, TimingInputEvents& events, int seconds,
                      int mebibytesPerSecond) {
    std::atomic<bool> isStopping = false;
    std::thread files([&] { sendFiles(port, mebibytesPerSecond, isStopping); });
    const bool isComplete = measure(name, port, events, seconds);
    isStopping = true;
    files.join();
    return isComplete;
}

int run(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const int seconds = argc > 1 ? std::atoi(argv[1]) : 5;
    std::string pattern = "/dev/shm/velloway-pointer-XXXXXX";
    if (seconds <= 0 || !::mkdtemp(pattern.data())) {
        std::fprintf(stderr, "usage: pointer_latency [seconds]\n");
        return 2;
    }
    const std::filesystem::path folder = pattern;
    const int logFile = ::open((folder / "log").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    if (logFile < 0 || ::dup2(logFile, STDOUT_FILENO) < 0) {
        std::perror("log");
        return 1;
    }

    bool isComplete = false;
    {
        QtMainQueue mainQueue;
        test::FakeUserDefaults userDefaults;
        test::FakePasteboard pasteboard;
        test::FakeScripts scripts;
        test::FakeAccessibility accessibility;
        test::FakeHost host;
        test::FakeUserNotificationCenter center;
        TimingInputEvents input;
        StandardOutputLog log;
        AppNotificationCenter notifications;
        PosixFiles files;
        LinuxMemory memory;
        NotificationManager notificationManager(center, host, log);
        AsioQueue readingQueue("ws.reading");
        AsioQueue fileQueue("ws.files");
        AsioQueue serverQueue("ws.server", {.began =
                                                [] {
                                                    StandardOutputLog::gatherOnThisThread();
                                                    QtMainQueue::gatherOnThisThread();
                                                },
                                            .ended =
                                                [&] {
                                                    mainQueue.flush();
                                                    log.flush();
                                                }});
        LinuxNetwork network(serverQueue);
        const auto store = std::make_shared<HistoryStore>(host);
        const std::uint16_t port = freePort();
        userDefaults.setInteger("port", port);
        host.downloads = folder;

        const auto server = WebSocketServer::make({.main = mainQueue,
                                                   .queue = serverQueue,
                                                   .fileQueue = fileQueue,
                                                   .readingQueue = readingQueue,
                                                   .network = network,
                                                   .userDefaults = userDefaults,
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
        std::thread phones([&] {
            isComplete = measure("alone", port, input, seconds) &&
                         measureWithFiles("with a file at 100 MiB/s", port, input, seconds, 100) &&
                         measureWithFiles("with a file as fast as it goes", port, input, seconds, 0);
            QMetaObject::invokeMethod(&application, &QCoreApplication::quit, Qt::QueuedConnection);
        });
        QCoreApplication::exec();
        phones.join();
        server->stop();
    }
    std::filesystem::remove_all(folder);
    return isComplete ? 0 : 1;
}

} // namespace

} // namespace velloway::bench

int main(int argc, char** argv) {
    return velloway::bench::run(argc, argv);
}
