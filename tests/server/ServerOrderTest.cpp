// In which order the server does what it does, and what outlives a connection.

#include "fakes/ServerHarness.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using testing::SizeIs;
using namespace std::chrono_literals;

const NetworkError goodbye{.localizedDescription = "Closed", .description = "1 Closed", .isGoodbye = true};

class ServerOrderTest : public testing::Test, protected ServerHarness {
protected:
    std::vector<std::string> bannerTitles() const {
        std::vector<std::string> titles;
        for (const auto& request : on.notificationCenter.requests) {
            titles.push_back(request.content.title);
        }
        return titles;
    }
};

TEST_F(ServerOrderTest, AConnectionThatIsNoLongerListedStillClearsTheFactsWhenItEnds) {
    listen();
    auto phone = connect();
    store->connectedWifiName.set("Home");
    store->connectedDeviceName.set("Phone");
    server->stop();
    on.drain();
    EXPECT_EQ(store->connectedWifiName.get(), "Home");
    phone->report(ConnectionState::cancelled);
    on.drain();
    EXPECT_EQ(store->connectedRemoteIP.get(), std::nullopt);
    EXPECT_EQ(store->connectedWifiName.get(), std::nullopt);
    EXPECT_EQ(store->connectedDeviceName.get(), std::nullopt);
}

TEST_F(ServerOrderTest, TheNextMessageIsAskedForOnlyOnceThisOneIsHandled) {
    listen();
    auto phone = connect();
    on.log.take();
    std::vector<int> armedAtLine;
    on.log.onLine = [&](const std::string&) { armedAtLine.push_back(phone->receivesArmed); };
    phone->deliver(R"({"action":"call_update"})");
    on.log.onLine = nullptr;
    EXPECT_THAT(armedAtLine, ElementsAre(1, 1));
    EXPECT_EQ(phone->receivesArmed, 2);
}

TEST_F(ServerOrderTest, AMessageIsLoggedBeforeItIsHandled) {
    listen();
    auto phone = connect();
    on.log.take();
    phone->deliver(R"({"action":"call_update"})");
    EXPECT_THAT(on.log.take(),
                ElementsAre("[WebSocketServer] Received complete message of 24 bytes from 192.168.1.20:50000",
                            "[WebSocketServer] Call Event: call_update"));
}

TEST_F(ServerOrderTest, TheFirstMessageIsAskedForBeforeTheWelcomeLeaves) {
    listen();
    auto phone = connectUnready();
    int armedAtWelcome = 0;
    phone->onSend = [&] { armedAtWelcome = phone->receivesArmed; };
    phone->report(ConnectionState::ready);
    phone->onSend = nullptr;
    EXPECT_EQ(armedAtWelcome, 1);
}

TEST_F(ServerOrderTest, TheListenerIsWatchedBeforeItStarts) {
    server->start();
    EXPECT_TRUE(on.network.listener().isStarted());
    EXPECT_TRUE(on.network.listener().wasWatchedAtStart);
}

TEST_F(ServerOrderTest, AConnectionIsLoggedAndWatchedBeforeItStarts) {
    listen();
    const auto phone = std::make_shared<FakeConnection>(Endpoint{.host = "10.0.0.1", .description = "there"});
    phones.push_back(phone);
    std::vector<bool> startedAtLine;
    on.log.onLine = [&](const std::string&) { startedAtLine.push_back(phone->isStarted()); };
    on.network.listener().connect(phone);
    on.log.onLine = nullptr;
    EXPECT_THAT(startedAtLine, ElementsAre(false));
    EXPECT_TRUE(phone->isStarted());
    EXPECT_TRUE(phone->wasWatchedAtStart);
}

TEST_F(ServerOrderTest, AConnectionThatComesWhileTheServerStopsIsEndedByThisStopOrTheNext) {
    listen();
    FakeListener& listener = on.network.listener();
    std::vector<std::shared_ptr<FakeConnection>> accepted;
    for (int number = 0; number < 5000; ++number) {
        accepted.push_back(std::make_shared<FakeConnection>(Endpoint{.description = "a phone"}));
    }
    std::atomic<bool> isAccepting = true;
    std::thread serverThread([&] {
        for (const auto& connection : accepted) {
            listener.connect(connection);
        }
        isAccepting = false;
    });
    while (isAccepting) {
        server->stop();
        on.main.runAll();
    }
    serverThread.join();
    server->stop();
    const auto left = std::count_if(accepted.begin(), accepted.end(),
                                    [](const auto& connection) { return !connection->isCancelled; });
    EXPECT_EQ(left, 0);
    on.drain();
    for (const auto& connection : accepted) {
        connection->report(ConnectionState::cancelled);
    }
}

TEST_F(ServerOrderTest, AServerThatIsStoppedAgainHasNothingToCancel) {
    listen();
    connect("10.0.0.1");
    on.journal.take();
    server->stop();
    EXPECT_THAT(on.journal.take(), ElementsAre("listener cancel", "10.0.0.1:50000 cancel"));
    server->stop();
    EXPECT_THAT(on.journal.take(), SizeIs(0));
}

TEST_F(ServerOrderTest, AConnectionIsReadOnInStatesThatAreNotItsEnd) {
    listen();
    const auto phone = connect();
    for (const auto state : {ConnectionState::waiting, ConnectionState::preparing, ConnectionState::setup}) {
        const int armed = phone->receivesArmed;
        phone->report(state);
        receive(*phone, R"({"action":"call_update"})");
        EXPECT_EQ(phone->receivesArmed, armed + 1);
    }
}

TEST_F(ServerOrderTest, AFailedListenerIsCancelledByTheRetry) {
    server->start();
    on.network.listener().report(ListenerState::failed, goodbye);
    on.main.advance(5s);
    ASSERT_THAT(on.network.listeners, SizeIs(2));
    EXPECT_TRUE(on.network.listeners[0]->isCancelled);
    EXPECT_FALSE(on.network.listeners[1]->isCancelled);
}

TEST_F(ServerOrderTest, ASecondPhoneOfTheSameHostStandsBesideTheFirst) {
    listen();
    auto first = connect("10.0.0.1");
    auto second = connect("10.0.0.1");
    EXPECT_FALSE(first->isCancelled);
    server->findDevice();
    on.drain();
    EXPECT_THAT(first->sent, SizeIs(1));
    EXPECT_THAT(second->sent, SizeIs(1));
    first->report(ConnectionState::cancelled);
    on.drain();
    EXPECT_EQ(store->connectedRemoteIP.get(), "10.0.0.1");
}

TEST_F(ServerOrderTest, PhonesGetATextInTheOrderInWhichTheyCame) {
    listen();
    connect("10.0.0.2");
    connect("10.0.0.1");
    connect("10.0.0.3");
    on.journal.take();
    server->findDevice();
    on.drain();
    EXPECT_THAT(on.journal.take(),
                ElementsAre("10.0.0.2:50000 send", "10.0.0.1:50000 send", "10.0.0.3:50000 send"));
}

TEST_F(ServerOrderTest, ATextReachesThePhonesThatAreThereWhenItLeaves) {
    listen();
    const auto first = connect("10.0.0.1");
    server->findDevice();
    first->report(ConnectionState::cancelled);
    const auto second = connectUnready("10.0.0.2");
    on.drain();
    EXPECT_THAT(first->sent, SizeIs(0));
    EXPECT_THAT(second->sent, SizeIs(1));
}

TEST_F(ServerOrderTest, AFileGoesOnOverARestartAndAnotherConnection) {
    on.host.downloads = "/home/me";
    listen();
    auto phone = connect();
    receive(*phone, R"({"action":"file_transfer_start","fileName":"a","fileSize":6})");
    receive(*phone, R"({"action":"file_chunk","fileName":"a","fileData":"YWJj"})");
    server->stop();
    phone->report(ConnectionState::cancelled);
    on.drain();
    listen();
    auto again = connect();
    receive(*again, R"({"action":"file_chunk","fileName":"a","fileData":"ZGVm","isLast":true})");
    EXPECT_EQ(on.files.content("/home/me/a"), "abcdef");
    EXPECT_TRUE(store->fileTransfers.get().front().isCompleted);
}

TEST_F(ServerOrderTest, TheStepOfTheBatteryOutlivesTheLastConnection) {
    listen();
    auto phone = connect();
    receive(*phone, R"({"action":"battery_status","level":18})");
    phone->report(ConnectionState::cancelled);
    on.drain();
    auto again = connect();
    receive(*again, R"({"action":"battery_status","level":18})");
    ASSERT_THAT(bannerTitles(), SizeIs(2));
    EXPECT_TRUE(bannerTitles()[0].starts_with("🔋"));
    EXPECT_TRUE(bannerTitles()[1].starts_with("🟡")) << "the next step down";
}

TEST_F(ServerOrderTest, AGoodByeIsNotCalledAFailure) {
    listen();
    auto phone = connect();
    on.log.take();
    phone->report(ConnectionState::failed, goodbye);
    EXPECT_EQ(on.log.lines().front(),
              "[WebSocketServer] Connection 192.168.1.20:50000 state changed to closed(1 Closed)");
}

TEST_F(ServerOrderTest, AChangeOfTheClipboardHereSendsNothingByItself) {
    listen();
    auto phone = connect();
    on.pasteboard.content = "one";
    readTextToSend(on.pasteboard, [&](const auto& text) { server->sendClipboard(*text); });
    on.drain();
    on.pasteboard.content = "two";
    on.drain();
    on.main.advance(60s);
    ASSERT_THAT(phone->sent, SizeIs(1));
    EXPECT_EQ(phone->sent[0].text, R"({"action":"clipboard","text":"one"})");
}

TEST_F(ServerOrderTest, TextFromThePhoneIsNotSentBackToIt) {
    listen();
    auto phone = connect();
    receive(*phone, R"({"action":"clipboard","text":"one"})");
    EXPECT_EQ(on.pasteboard.content, "one");
    EXPECT_THAT(phone->sent, SizeIs(0));
}

} // namespace
} // namespace velloway::test
