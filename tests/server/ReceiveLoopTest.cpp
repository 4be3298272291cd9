// What a connection may do while files are being written: when it is read, and what passes them.

#include "fakes/ServerHarness.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace velloway::test {
namespace {

using namespace std::chrono_literals;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

class ReceiveLoopTest : public testing::Test, protected ServerHarness {
protected:
    ReceiveLoopTest() {
        on.host.downloads = "/home/me";
        on.accessibility.trusted = true;
        listen();
        phone = connect("10.0.0.1");
        other = connect("10.0.0.2");
    }

    static std::string start(const std::string& name) {
        return R"({"action":"file_transfer_start","fileName":")" + name + R"(","fileSize":6})";
    }
    static std::string chunk(const std::string& name, const std::string& data, bool isLast = false) {
        return R"({"action":"file_chunk","fileName":")" + name + R"(","fileData":")" + data + R"(","isLast":)" +
               (isLast ? "true" : "false") + "}";
    }
    /// Everything runs but the file queue, which stands for storage that does not answer.
    void runAllButFiles() { test::drain(on.main, on.server); }
    void deliver(FakeConnection& from, const std::string& message) {
        from.deliver(message);
        runAllButFiles();
    }
    std::string content(const std::string& name) const { return on.files.content("/home/me/" + name); }
    std::vector<std::string> bannerTitles() const {
        std::vector<std::string> titles;
        for (const auto& request : on.notificationCenter.requests) {
            titles.push_back(request.content.title);
        }
        return titles;
    }

    std::shared_ptr<FakeConnection> phone;
    std::shared_ptr<FakeConnection> other;
    const std::string move =
        R"({"action":"remote_control","command":"move","type":"mouse_move","dx":1,"dy":2})";
    const std::string key = R"({"action":"remote_control","command":"key_left"})";
    const std::string quarter = std::string(FileBacklog::mostBytes / 4, 'A');
};

TEST_F(ReceiveLoopTest, NoFileIsTouchedWhereMessagesAreHandled) {
    int calls = 0;
    on.files.onWriterCall = [&] {
        ++calls;
        EXPECT_TRUE(on.fileQueue.isCurrent());
    };
    deliver(*phone, start("a"));
    deliver(*phone, chunk("a", "YWJj"));
    deliver(*phone, chunk("a", "ZGVm", true));
    EXPECT_EQ(calls, 0);
    on.drain();
    EXPECT_EQ(calls, 4);
    EXPECT_EQ(content("a"), "abcdef");
}

TEST_F(ReceiveLoopTest, APhoneIsNotReadWhileTooMuchOfItsFilesWaits) {
    deliver(*phone, start("a"));
    int sent = 0;
    while (phone->isReceiving() && sent < 100) {
        deliver(*phone, chunk("a", quarter));
        ++sent;
    }
    EXPECT_EQ(sent, 4);
    EXPECT_TRUE(other->isReceiving());

    on.fileQueue.runOne();
    runAllButFiles();
    EXPECT_FALSE(phone->isReceiving()) << "the start leaves no room";
    on.fileQueue.runOne();
    EXPECT_FALSE(phone->isReceiving()) << "on the file queue";
    runAllButFiles();
    EXPECT_TRUE(phone->isReceiving());
    deliver(*phone, chunk("a", quarter));
    EXPECT_FALSE(phone->isReceiving());
    on.drain();
    EXPECT_EQ(content("a").size(), 5 * quarter.size() / 4 * 3);
    EXPECT_TRUE(phone->isReceiving());
}

TEST_F(ReceiveLoopTest, APhoneThatIsBeingReadIsNotAskedTwiceOnceItsFilesAreWritten) {
    const int armed = phone->receivesArmed;
    deliver(*phone, start("a"));
    deliver(*phone, chunk("a", "YWJj", true));
    EXPECT_EQ(phone->receivesArmed, armed + 2);
    on.drain();
    EXPECT_EQ(content("a"), "abc");
    EXPECT_EQ(phone->receivesArmed, armed + 2);
}

TEST_F(ReceiveLoopTest, OneMessageMayBeLargerThanAllThatMayWait) {
    deliver(*phone, start("a"));
    const std::string large(2 * FileBacklog::mostBytes, 'A');
    deliver(*phone, chunk("a", large, true));
    EXPECT_FALSE(phone->isReceiving());
    on.drain();
    EXPECT_EQ(content("a").size(), large.size() / 4 * 3);
    EXPECT_TRUE(phone->isReceiving());
}

TEST_F(ReceiveLoopTest, RemoteControlPassesFilesThatWait) {
    deliver(*phone, start("a"));
    deliver(*phone, chunk("a", "YWJj", true));
    for (FakeConnection* each : {phone.get(), other.get()}) {
        deliver(*each, move);
        deliver(*each, key);
    }
    EXPECT_THAT(on.input.posted, SizeIs(4));
    EXPECT_FALSE(on.files.exists("/home/me/a"));
    EXPECT_TRUE(phone->isReceiving());
}

TEST_F(ReceiveLoopTest, AnythingElseOfAPhoneTakesEffectBehindTheFilesThatItSentBefore) {
    for (const auto& [message, title] : std::vector<std::pair<std::string, std::string>>{
             {R"({"action":"clipboard","text":"copied"})", "Clipboard Synced"},
             {R"({"app":"Chat","title":"Anna","body":"Hi","key":"k"})", "Chat"},
             {R"({"action":"battery_status","level":15})", "15% Battery"}}) {
        on.notificationCenter.requests.clear();
        deliver(*phone, start("a"));
        deliver(*phone, chunk("a", "YWJj", true));
        deliver(*phone, message);
        EXPECT_FALSE(phone->isReceiving()) << message;
        EXPECT_THAT(bannerTitles(), IsEmpty()) << message;
        on.fileQueue.runOne();
        runAllButFiles();
        EXPECT_FALSE(phone->isReceiving()) << "a chunk still waits; " << message;
        on.drain();
        const auto titles = bannerTitles();
        ASSERT_THAT(titles, SizeIs(4)) << message;
        EXPECT_EQ(titles[2], "File Received");
        EXPECT_THAT(titles[3], HasSubstr(title));
        EXPECT_TRUE(phone->isReceiving()) << message;
    }
}

TEST_F(ReceiveLoopTest, AMessageThatWaitsIsLoggedOnceAndHandledOnce) {
    on.log.take();
    deliver(*phone, start("a"));
    deliver(*phone, R"({"action":"call_update"})");
    EXPECT_THAT(on.log.take(), Not(Contains("[WebSocketServer] Call Event: call_update")));
    on.drain();
    EXPECT_THAT(on.log.take(), ElementsAre("[WebSocketServer] Call Event: call_update"));
}

TEST_F(ReceiveLoopTest, AnotherPhoneWaitsForNothing) {
    deliver(*phone, start("a"));
    deliver(*phone, chunk("a", quarter, true));
    deliver(*other, R"({"action":"clipboard","text":"copied"})");
    EXPECT_THAT(bannerTitles(), ElementsAre("Clipboard Synced"));
    EXPECT_TRUE(other->isReceiving());
}

TEST_F(ReceiveLoopTest, AMessageThatCannotBeReadWaitsForNothing) {
    deliver(*phone, start("a"));
    for (const char* message : {"{", "[]", R"({"action":"unknown"})", R"({"neither":1})"}) {
        deliver(*phone, message);
        EXPECT_TRUE(phone->isReceiving()) << message;
    }
}

TEST_F(ReceiveLoopTest, AMessageThatWaitsTakesEffectBeforeTheEndOfItsConnection) {
    deliver(*other, start("b"));
    other->report(ConnectionState::cancelled);
    deliver(*phone, start("a"));
    deliver(*phone, R"({"action":"device_info","wifiName":"Home","deviceName":"Phone"})");
    std::vector<std::optional<std::string>> names;
    const auto subscription =
        store->connectedWifiName.observe([&](const auto& name) { names.push_back(name); });
    phone->report(ConnectionState::failed,
                  NetworkError{.localizedDescription = "reset", .description = "reset"});
    on.drain();
    EXPECT_THAT(names, ElementsAre("Home", std::nullopt));
    EXPECT_EQ(store->connectedDeviceName.get(), std::nullopt);
}

TEST_F(ReceiveLoopTest, AMessageThatWaitsIsHandledBeforeTheEndOfItsConnectionIsLogged) {
    deliver(*phone, start("a"));
    deliver(*phone, R"({"action":"call_update"})");
    on.log.take();
    phone->report(ConnectionState::cancelled);
    EXPECT_THAT(on.log.take(),
                ElementsAre("[WebSocketServer] Call Event: call_update",
                            "[WebSocketServer] Connection 10.0.0.1:50000 state changed to cancelled",
                            "[WebSocketServer] Connection 10.0.0.1:50000 cancelled"));
    on.drain();
}

TEST_F(ReceiveLoopTest, NothingMoreIsAskedOfAConnectionThatEndedMeanwhile) {
    deliver(*phone, start("a"));
    while (phone->isReceiving()) {
        deliver(*phone, chunk("a", quarter));
    }
    const int armed = phone->receivesArmed;
    phone->report(ConnectionState::cancelled);
    on.drain();
    EXPECT_EQ(phone->receivesArmed, armed);
    EXPECT_EQ(content("a").size(), 4 * quarter.size() / 4 * 3) << "what has come is written";
}

TEST_F(ReceiveLoopTest, WhatHasComeIsWrittenWhenTheServerStops) {
    deliver(*phone, start("a"));
    deliver(*phone, chunk("a", "YWJj"));
    server->stop();
    phone->report(ConnectionState::cancelled);
    on.drain();
    EXPECT_EQ(content("a"), "abc");
    listen();
    const auto again = connect("10.0.0.1");
    receive(*again, chunk("a", "ZGVm", true));
    EXPECT_EQ(content("a"), "abcdef");
}

TEST_F(ReceiveLoopTest, WhatHasComeIsWrittenWhenTheServerGoes) {
    deliver(*phone, start("a"));
    deliver(*phone, chunk("a", "YWJj", true));
    deliver(*phone, R"({"action":"clipboard","text":"copied"})");
    phone->report(ConnectionState::cancelled);
    server.reset();
    on.drain();
    EXPECT_EQ(content("a"), "abc");
    EXPECT_EQ(on.files.openCount("/home/me/a"), 0);
    EXPECT_TRUE(store->fileTransfers.get().front().isCompleted);
}

TEST_F(ReceiveLoopTest, AFullDiskHoldsNobodyUp) {
    on.files.appendError = std::make_error_code(std::errc::no_space_on_device);
    deliver(*phone, start("a"));
    for (int piece = 0; piece < 20; ++piece) {
        ASSERT_TRUE(phone->isReceiving()) << piece;
        receive(*phone, chunk("a", quarter, piece == 19));
    }
    receive(*phone, R"({"action":"clipboard","text":"copied"})");
    EXPECT_THAT(bannerTitles(), Contains("Clipboard Synced"));
    EXPECT_FALSE(store->fileTransfers.get().front().isCompleted);
}

TEST_F(ReceiveLoopTest, ALongTextOfAFileIsKeptWhereItLiesAndAShortOneIsCopied) {
    constexpr std::size_t bound = std::size_t{64} << 10;
    for (const std::size_t size : {std::size_t{8}, bound - 4, bound, 16 * bound}) {
        const bool isKept = size >= bound;
        auto message = std::make_shared<std::string>(chunk("a", std::string(size, 'A'), true));
        message->append(64, ' ');
        const std::weak_ptr<std::string> watch = message;
        int timesKept = 0;
        deliver(*phone, start("a"));
        phone->deliver({.bytes = std::string_view(*message).substr(0, message->size() - 64),
                        .readableAfter = 64,
                        .hasWebSocketMetadata = true,
                        .isComplete = true,
                        .keep = [&] {
                            ++timesKept;
                            return message;
                        }});
        message.reset();
        EXPECT_EQ(watch.expired(), !isKept) << size;
        EXPECT_EQ(timesKept, isKept ? 1 : 0) << size;
        on.drain();
        EXPECT_TRUE(watch.expired());
        EXPECT_EQ(content("a"), std::string(size / 4 * 3, '\0'));
    }
}

TEST_F(ReceiveLoopTest, MemoryIsGivenBackInSilenceAfterALargeMessage) {
    const auto small = R"({"neither":1})";
    const std::string large = R"({"neither":")" + std::string(std::size_t{1} << 20, 'x') + "\"}";
    deliver(*phone, small);
    on.server.advance(60s);
    on.drain();
    EXPECT_EQ(on.memory.timesGivenBack, 0);

    deliver(*phone, large);
    deliver(*phone, large);
    for (int second = 0; second < 10; ++second) {
        deliver(*other, small);
        on.server.advance(1s);
    }
    on.drain();
    EXPECT_EQ(on.memory.timesGivenBack, 0) << "a phone still talks";
    for (int second = 0; second < 6; ++second) {
        on.server.advance(1s);
    }
    EXPECT_EQ(on.memory.timesGivenBack, 0) << "not on the server queue";
    on.drain();
    EXPECT_EQ(on.memory.timesGivenBack, 1);
    on.server.advance(60s);
    on.drain();
    EXPECT_EQ(on.memory.timesGivenBack, 1);
    deliver(*phone, large);
    on.server.advance(6s);
    on.drain();
    EXPECT_EQ(on.memory.timesGivenBack, 2);
}

} // namespace
} // namespace velloway::test
