// The server on its real network and queues, with storage that the test holds up.

#include "base64/Base64.h"
#include "fakes/FakePlatform.h"
#include "hosts/network/EchoHost.h"
#include "server/WebSocketServer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <future>
#include <mutex>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

namespace velloway::test {
namespace {

using namespace std::chrono_literals;

std::uint16_t freePort() {
    const int probe = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    socklen_t size = sizeof address;
    ::bind(probe, reinterpret_cast<const sockaddr*>(&address), size);
    ::getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size);
    ::close(probe);
    return ntohs(address.sin_port);
}

std::string randomBytes(std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    std::string bytes(size, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random());
    }
    return bytes;
}

class CountingInput : public FakeInputEvents {
public:
    void movePointer(double, double) override { ++moves; }
    void pressKey(Key, Modifiers) override { ++keys; }

    std::atomic<int> moves = 0;
    std::atomic<int> keys = 0;
};

/// Holds the calls to the storage up until it is opened.
class Gate {
public:
    void pass() {
        std::unique_lock lock(mutex_);
        ++arrived;
        opened_.wait(lock, [this] { return isOpen_; });
    }
    void open() {
        const std::lock_guard lock(mutex_);
        isOpen_ = true;
        opened_.notify_all();
    }

    std::atomic<int> arrived = 0;

private:
    std::mutex mutex_;
    std::condition_variable opened_;
    bool isOpen_ = false;
};

class FilesOverNetworkTest : public testing::Test {
protected:
    FilesOverNetworkTest() {
        on.host.downloads = "/home/me";
        on.userDefaults.setInteger("port", port);
        std::promise<void> listening;
        main.async([&] {
            store = std::make_shared<HistoryStore>(on.host);
            server = WebSocketServer::make({.main = main,
                                            .queue = queue,
                                            .fileQueue = fileQueue,
                                            .readingQueue = fileQueue,
                                            .network = network,
                                            .userDefaults = on.userDefaults,
                                            .pasteboard = on.pasteboard,
                                            .input = input,
                                            .scripts = on.scripts,
                                            .accessibility = on.accessibility,
                                            .host = on.host,
                                            .files = on.files,
                                            .memory = on.memory,
                                            .log = on.log,
                                            .notificationManager = notificationManager,
                                            .notifications = notifications});
            server->setHistoryStore(store);
            server->setOnStatusChange([&](const std::string& status) {
                if (status.starts_with("listening")) {
                    listening.set_value();
                }
            });
            server->start();
        });
        EXPECT_EQ(listening.get_future().wait_for(10s), std::future_status::ready);
    }
    ~FilesOverNetworkTest() override {
        gate.open();
        EXPECT_TRUE(queue.end(10s));
        EXPECT_TRUE(fileQueue.finish(10s));
        EXPECT_TRUE(main.end(10s));
        server.reset();
    }

    static std::string chunk(const std::string& name, std::string_view bytes, bool isLast) {
        std::string text = R"({"action":"file_chunk","fileName":")" + name + R"(","fileData":")";
        base64::appendEncodedEscaped(text, bytes);
        return text + R"(","isLast":)" + (isLast ? "true}" : "false}");
    }
    static std::string start(const std::string& name) {
        return R"({"action":"file_transfer_start","fileName":")" + name + R"(","fileSize":1000})";
    }
    RawPhone connect() const {
        RawPhone phone(port);
        EXPECT_TRUE(phone.shakeHands());
        return phone;
    }
    void holdStorageUp() {
        std::promise<void> done;
        fileQueue.async([&] {
            on.files.onWriterCall = [this] { gate.pass(); };
            done.set_value();
        });
        done.get_future().wait();
    }
    bool isFinished(const std::string& name) const {
        for (const std::string& line : on.log.lines()) {
            if (line == "[WebSocketServer] File handle closed for " + name) {
                return true;
            }
        }
        return false;
    }
    /// How many messages have come that are longer than `least`.
    int largeMessages(unsigned long least = 1'000'000) const {
        constexpr std::string_view begin = "[WebSocketServer] Received complete message of ";
        int count = 0;
        for (const std::string& line : on.log.lines()) {
            count += line.starts_with(begin) && std::stoul(line.substr(begin.size())) > least ? 1 : 0;
        }
        return count;
    }
    std::string content(const std::string& name) const { return on.files.content("/home/me/" + name); }

    const std::string move =
        R"({"action":"remote_control","command":"move","type":"mouse_move","dx":1,"dy":1})";
    const std::string key = R"({"action":"remote_control","command":"key_left"})";

    FakePlatform on;
    Gate gate;
    CountingInput input;
    AppNotificationCenter notifications;
    NotificationManager notificationManager{on.notificationCenter, on.host, on.log};
    const std::uint16_t port = freePort();
    std::shared_ptr<HistoryStore> store;
    std::shared_ptr<WebSocketServer> server;
    AsioQueue main{"main"};
    AsioQueue fileQueue{"ws.files"};
    AsioQueue queue{"ws.server"};
    LinuxNetwork network{queue};
};

TEST_F(FilesOverNetworkTest, FilesOfSeveralPhonesArriveWholeWhileOthersTalk) {
    std::atomic<bool> isOver = false;
    std::vector<std::string> contents(3);
    std::vector<std::thread> phones;
    for (unsigned number = 0; number < contents.size(); ++number) {
        contents[number] = randomBytes(3'000'000, number);
        phones.emplace_back([&, number] {
            RawPhone phone = connect();
            const std::string name = "file" + std::to_string(number);
            phone.sendText(start(name));
            std::mt19937 random(number);
            std::string_view rest = contents[number];
            while (!rest.empty()) {
                const std::string_view piece = rest.substr(0, 1 + random() % 400'000);
                rest.remove_prefix(piece.size());
                phone.sendText(chunk(name, piece, rest.empty()));
                phone.sendText(key);
            }
            EXPECT_TRUE(waitUntil([&] { return isFinished(name); }));
        });
    }
    std::thread talker([&] {
        RawPhone phone = connect();
        while (!isOver) {
            phone.sendText(move);
            std::this_thread::sleep_for(1ms);
        }
    });
    for (std::thread& phone : phones) {
        phone.join();
    }
    isOver = true;
    talker.join();
    for (unsigned number = 0; number < contents.size(); ++number) {
        EXPECT_TRUE(content("file" + std::to_string(number)) == contents[number]) << number;
    }
    EXPECT_GT(input.moves, 0);
    EXPECT_GT(input.keys, 0);
}

TEST_F(FilesOverNetworkTest, RemoteControlOfEveryPhonePassesStorageThatDoesNotAnswer) {
    holdStorageUp();
    RawPhone sender = connect();
    RawPhone other = connect();
    const std::string bytes = randomBytes(300'000, 1);
    sender.sendText(start("a"));
    sender.sendText(chunk("a", bytes, true));
    EXPECT_TRUE(waitUntil([&] { return gate.arrived > 0; }));
    for (RawPhone* phone : {&sender, &other}) {
        phone->sendText(move);
        phone->sendText(key);
    }
    EXPECT_TRUE(waitUntil([&] { return input.moves == 2 && input.keys == 2; }));
    EXPECT_FALSE(isFinished("a"));
    gate.open();
    EXPECT_TRUE(waitUntil([&] { return isFinished("a"); }));
    EXPECT_TRUE(content("a") == bytes);
}

TEST_F(FilesOverNetworkTest, APhoneIsReadNoFasterThanStorageTakesItsFiles) {
    holdStorageUp();
    RawPhone sender = connect();
    constexpr int chunks = 12;
    const std::string bytes = randomBytes(std::size_t{1} << 20, 1);
    sender.sendText(start("a"));
    std::thread sending([&] {
        for (int number = 0; number < chunks; ++number) {
            sender.sendText(chunk("a", bytes, number == chunks - 1));
        }
    });
    EXPECT_TRUE(waitUntil([&] { return largeMessages() >= 3; }));
    std::this_thread::sleep_for(100ms);
    EXPECT_LE(largeMessages(), 4) << "1.4 MB each, and 4 MiB may wait";
    gate.open();
    sending.join();
    EXPECT_TRUE(waitUntil([&] { return isFinished("a"); }));
    EXPECT_EQ(content("a").size(), chunks * bytes.size());
}

TEST_F(FilesOverNetworkTest, WhatAPhoneHasSentIsWrittenWhenItHasGone) {
    holdStorageUp();
    const std::string bytes = randomBytes(300'000, 1);
    {
        RawPhone sender = connect();
        sender.sendText(start("a"));
        sender.sendText(chunk("a", bytes, false));
        EXPECT_TRUE(waitUntil([&] { return largeMessages(bytes.size()) == 1; }));
    }
    gate.open();
    EXPECT_TRUE(waitUntil([&] { return content("a").size() == bytes.size(); }));
    RawPhone again = connect();
    again.sendText(chunk("a", bytes, true));
    EXPECT_TRUE(waitUntil([&] { return isFinished("a"); }));
    EXPECT_TRUE(content("a") == bytes + bytes);
}

TEST_F(FilesOverNetworkTest, AtTheEndOfTheQueuesWhatHasComeIsWritten) {
    holdStorageUp();
    RawPhone sender = connect();
    const std::string bytes = randomBytes(300'000, 1);
    sender.sendText(start("a"));
    sender.sendText(chunk("a", bytes, true));
    sender.sendText(key);
    EXPECT_TRUE(waitUntil([&] { return input.keys == 1; }));
    EXPECT_TRUE(queue.end(10s));
    gate.open();
    EXPECT_TRUE(fileQueue.finish(10s));
    EXPECT_TRUE(content("a") == bytes);
}

} // namespace
} // namespace velloway::test
