// Measures the time from just before a pointer move is written to the socket until its event is posted, at
// 1,000 moves a second: through the sockets, the server, the dispatch, the router, the log (a file) and both
// queues. Beside it stands what the machine itself takes (RawPeer.h), measured in turn with it.
//
// The log goes to a file and the figures to standard error. The queues are joined as in the program.
//
//   pointer_latency [seconds for each case, 5 by default [rounds, 1 by default]]

#include "FileLoad.h"
#include "MoveTimes.h"
#include "PhoneSocket.h"
#include "RawPeer.h"
#include "SlowFiles.h"
#include "fakes/FakeDesktop.h"
#include "fakes/FakeInput.h"
#include "fakes/FakeUserDefaults.h"
#include "fakes/FakeUserNotificationCenter.h"
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

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace velloway::bench {

namespace {

using Clock = MoveTimes::Clock;
using std::chrono::milliseconds;

constexpr int movesPerSecond = 1'000;
constexpr std::string_view move =
    R"({"action":"remote_control","command":"move","type":"mouse_move","dx":1.5,"dy":-0.5})";
/// A masked frame of less than 126 bytes has six bytes before its text.
constexpr std::size_t moveBytes = move.size() + 6;
static_assert(move.size() < 126);

class TimingInputEvents : public test::FakeInputEvents {
public:
    explicit TimingInputEvents(MoveTimes& times) : times_(times) {}
    void movePointer(double, double) override { times_.note(); }

private:
    MoveTimes& times_;
};

struct Case {
    const char* name;
    /// Of a file that arrives meanwhile; none when absent.
    std::optional<int> mebibytesPerSecond;
    milliseconds storageDelay{0};
    double mostP99;
    double aimP99;
};

constexpr std::array cases{
    Case{.name = "alone", .mostP99 = 120, .aimP99 = 100},
    Case{.name = "beside a file at 100 MiB/s", .mebibytesPerSecond = 100, .mostP99 = 2000, .aimP99 = 1000},
    Case{.name = "beside a file at full speed",
         .mebibytesPerSecond = FileLoad::fullSpeed,
         .mostP99 = 2000,
         .aimP99 = 1000},
    Case{.name = "beside one to a disk with 300 ms a write",
         .mebibytesPerSecond = FileLoad::fullSpeed,
         .storageDelay = milliseconds(300),
         .mostP99 = 2000,
         .aimP99 = 1000},
};

/// In microseconds.
struct Latency {
    double median;
    double p99;
    double worst;
};

/// The program without its desktop. Main thread.
class Bridge {
public:
    Bridge(std::uint16_t port, const std::filesystem::path& folder, MoveTimes& times) : input_(times) {
        userDefaults_.setInteger("port", port);
        host_.downloads = folder;
        server_ = WebSocketServer::make({.main = main_,
                                         .queue = serverQueue_,
                                         .fileQueue = fileQueue_,
                                         .readingQueue = readingQueue_,
                                         .network = network_,
                                         .userDefaults = userDefaults_,
                                         .pasteboard = pasteboard_,
                                         .input = input_,
                                         .scripts = scripts_,
                                         .accessibility = accessibility_,
                                         .host = host_,
                                         .files = files,
                                         .memory = memory_,
                                         .log = log_,
                                         .notificationManager = notificationManager_,
                                         .notifications = notifications_});
        server_->setHistoryStore(store_);
        takeShortTurns();
        server_->start();
    }
    ~Bridge() { server_->stop(); }
    Bridge(const Bridge&) = delete;
    Bridge& operator=(const Bridge&) = delete;

private:
    PosixFiles fastFiles_;

public:
    SlowFiles files{fastFiles_};

private:
    QtMainQueue main_;
    test::FakeUserDefaults userDefaults_;
    test::FakePasteboard pasteboard_;
    test::FakeScripts scripts_;
    test::FakeAccessibility accessibility_;
    test::FakeHost host_;
    test::FakeUserNotificationCenter center_;
    TimingInputEvents input_;
    StandardOutputLog log_;
    AppNotificationCenter notifications_;
    LinuxMemory memory_;
    NotificationManager notificationManager_{center_, host_, log_};
    AsioQueue readingQueue_{"ws.reading"};
    AsioQueue fileQueue_{"ws.files", {.began = letOthersGoFirst}};
    AsioQueue serverQueue_{"ws.server",
                           {.began =
                                [] {
                                    StandardOutputLog::gatherOnThisThread();
                                    QtMainQueue::gatherOnThisThread();
                                },
                            .ended =
                                [this] {
                                    main_.flush();
                                    log_.flush();
                                }}};
    LinuxNetwork network_{serverQueue_};
    std::shared_ptr<HistoryStore> store_ = std::make_shared<HistoryStore>(host_);
    std::shared_ptr<WebSocketServer> server_;
};

Latency latencyOf(const std::vector<Clock::time_point>& sentAt,
                  const std::vector<Clock::time_point>& arrivedAt) {
    std::vector<double> microseconds(sentAt.size());
    for (std::size_t index = 0; index < sentAt.size(); ++index) {
        microseconds[index] =
            std::chrono::duration<double, std::micro>(arrivedAt[index] - sentAt[index]).count();
    }
    std::sort(microseconds.begin(), microseconds.end());
    return {microseconds[microseconds.size() / 2], microseconds[microseconds.size() * 99 / 100],
            microseconds.back()};
}

Latency measureMoves(std::uint16_t port, MoveTimes& times, int seconds) {
    PhoneSocket phone(port);
    const auto moves = static_cast<std::size_t>(seconds * movesPerSecond);
    std::vector<Clock::time_point> sentAt(moves);
    times.expect(moves);
    const auto start = Clock::now() + milliseconds(100);
    for (std::size_t index = 0; index < moves; ++index) {
        std::this_thread::sleep_until(start + std::chrono::nanoseconds(std::chrono::seconds(1)) * index /
                                                  movesPerSecond);
        sentAt[index] = Clock::now();
        phone.send(move);
    }
    const auto deadline = Clock::now() + std::chrono::seconds(10);
    while (!times.hasAll()) {
        if (Clock::now() > deadline) {
            std::fprintf(stderr, "moves were lost\n");
            std::exit(1);
        }
        std::this_thread::sleep_for(milliseconds(1));
    }
    return latencyOf(sentAt, times.arrivedAt());
}

Latency measure(std::uint16_t port, MoveTimes& times, int seconds, std::optional<int> mebibytesPerSecond) {
    std::optional<FileLoad> load;
    if (mebibytesPerSecond) {
        load.emplace(port, *mebibytesPerSecond);
    }
    return measureMoves(port, times, seconds);
}

/// Of each value the median of all rounds.
void print(const char* who, const std::vector<Latency>& rounds) {
    const auto medianOf = [&](double Latency::*value) {
        std::vector<double> values(rounds.size());
        std::transform(rounds.begin(), rounds.end(), values.begin(),
                       [&](const Latency& each) { return each.*value; });
        std::sort(values.begin(), values.end());
        return values[values.size() / 2];
    };
    std::fprintf(stderr, "    %-10s median %7.0f us   p99 %7.0f us   worst %7.0f us\n", who,
                 medianOf(&Latency::median), medianOf(&Latency::p99), medianOf(&Latency::worst));
}

void measureCases(Bridge& bridge, std::uint16_t port, const std::filesystem::path& folder, MoveTimes& times,
                  int seconds, int rounds) {
    std::array<std::vector<Latency>, cases.size()> ours;
    std::array<std::vector<Latency>, cases.size()> raw;
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t index = 0; index < cases.size(); ++index) {
            const Case& each = cases[index];
            if (each.storageDelay.count() == 0) {
                const std::uint16_t rawPort = freePort();
                const RawPeer peer(rawPort, moveBytes, folder / "raw", times);
                raw[index].push_back(measure(rawPort, times, seconds, each.mebibytesPerSecond));
            }
            bridge.files.delay = each.storageDelay;
            ours[index].push_back(measure(port, times, seconds, each.mebibytesPerSecond));
            bridge.files.delay = milliseconds(0);
        }
    }
    for (std::size_t index = 0; index < cases.size(); ++index) {
        std::fprintf(stderr, "A pointer move %s (p99 at most %.0f us, aim %.0f us)\n", cases[index].name,
                     cases[index].mostP99, cases[index].aimP99);
        print("Velloway", ours[index]);
        if (!raw[index].empty()) {
            print("machine", raw[index]);
        }
    }
}

int run(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const int seconds = argc > 1 ? std::atoi(argv[1]) : 5;
    const int rounds = argc > 2 ? std::atoi(argv[2]) : 1;
    std::string pattern = "/dev/shm/velloway-pointer-XXXXXX";
    if (seconds <= 0 || rounds <= 0 || !::mkdtemp(pattern.data())) {
        std::fprintf(stderr, "usage: pointer_latency [seconds [rounds]]\n");
        return 2;
    }
    const std::filesystem::path folder = pattern;
    const int logFile = ::open((folder / "log").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    if (logFile < 0 || ::dup2(logFile, STDOUT_FILENO) < 0) {
        std::perror("log");
        return 1;
    }
    {
        MoveTimes times;
        const std::uint16_t port = freePort();
        Bridge bridge(port, folder, times);
        std::thread phones([&] {
            measureCases(bridge, port, folder, times, seconds, rounds);
            QMetaObject::invokeMethod(&application, &QCoreApplication::quit, Qt::QueuedConnection);
        });
        QCoreApplication::exec();
        phones.join();
    }
    std::filesystem::remove_all(folder);
    return 0;
}

} // namespace

} // namespace velloway::bench

int main(int argc, char** argv) {
    return velloway::bench::run(argc, argv);
}
