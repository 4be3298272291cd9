#include "fakes/ServerHarness.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <tuple>

namespace velloway::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using namespace std::chrono_literals;

const NetworkError refused{.localizedDescription = "Address in use", .description = "98: Address in use"};

class WebSocketServerTest : public testing::Test, protected ServerHarness {};

// Port

struct PortCase {
    std::optional<std::int64_t> stored;
    std::uint16_t port;
};

class WebSocketServerPortTest : public testing::TestWithParam<PortCase> {};

TEST_P(WebSocketServerPortTest, ListensOnTheStoredPortOrTheDefault) {
    ServerHarness harness;
    if (GetParam().stored) {
        harness.on.userDefaults.setInteger("port", *GetParam().stored);
    }
    harness.listen();
    EXPECT_EQ(harness.on.network.listener().parameters.port, GetParam().port);
    EXPECT_THAT(harness.statuses, ElementsAre("listening on :" + std::to_string(GetParam().port)));
}

INSTANTIATE_TEST_SUITE_P(Ports, WebSocketServerPortTest,
                         testing::Values(PortCase{std::nullopt, 8765}, PortCase{0, 8765}, PortCase{-1, 8765},
                                         PortCase{INT64_MIN, 8765}, PortCase{1, 1}, PortCase{65535, 65535}));

TEST(WebSocketServerDeathTest, AStoredPortAbove65535EndsTheProcess) {
    ServerHarness harness;
    harness.on.userDefaults.setInteger("port", 65536);
    EXPECT_DEATH(harness.server->start(), "Fatal error: Not enough bits to represent the passed value\n");
}

// Start, stop and retry

TEST_F(WebSocketServerTest, ListensForWebSocketsOfVersion13WithReuseAndAutomaticPongs) {
    listen();
    const ListenerParameters& parameters = on.network.listener().parameters;
    EXPECT_TRUE(parameters.allowLocalEndpointReuse);
    EXPECT_EQ(parameters.webSocketVersion, 13);
    EXPECT_TRUE(parameters.autoReplyPing);
    EXPECT_EQ(on.network.listener().queue(), &on.server);
}

TEST_F(WebSocketServerTest, ASecondStartEndsListenerAndConnectionsBeforeItListensAgain) {
    listen();
    connect("10.0.0.1");
    connect("10.0.0.2");
    on.journal.take();

    server->start();

    EXPECT_THAT(on.journal.entries(),
                ElementsAre("listener cancel", "10.0.0.1:50000 cancel", "10.0.0.2:50000 cancel",
                            "listener make 8765", "listener start"));
    EXPECT_TRUE(on.network.listener().parameters.allowLocalEndpointReuse);
    EXPECT_EQ(on.network.listeners.size(), 2u);
}

TEST_F(WebSocketServerTest, StartingAStoppedServerEmptiesTheSimList) {
    store->availableSIMs.set({{.slot = 0, .carrier = "One"}});
    server->start();
    EXPECT_FALSE(store->availableSIMs.get().empty()) << "the store changes on the main queue, not in the call";
    on.drain();
    EXPECT_TRUE(store->availableSIMs.get().empty());
}

TEST_F(WebSocketServerTest, StopLeavesTheOtherFactsAndReportsNothingItself) {
    listen();
    statuses.clear();
    store->connectedRemoteIP.set("10.0.0.9");
    store->connectedDeviceName.set("Phone");
    server->stop();
    on.drain();
    EXPECT_THAT(statuses, IsEmpty());
    EXPECT_EQ(store->connectedRemoteIP.get(), "10.0.0.9");
    EXPECT_EQ(store->connectedDeviceName.get(), "Phone");
    on.network.listener().report(ListenerState::cancelled);
    EXPECT_THAT(statuses, ElementsAre("stopped"));
}

TEST_F(WebSocketServerTest, APortThatThePlatformRefusesIsReportedAndNotRetried) {
    on.network.acceptsPorts = false;
    server->start();
    EXPECT_THAT(statuses, ElementsAre("invalid port"));
    on.main.advance(60s);
    EXPECT_THAT(on.network.listeners, IsEmpty());
}

TEST_F(WebSocketServerTest, AListenerThatCannotBeMadeIsReportedAndNotRetried) {
    on.network.makeError = refused;
    server->start();
    EXPECT_THAT(statuses, ElementsAre("error: Address in use"));
    on.network.makeError.reset();
    on.main.advance(60s);
    EXPECT_THAT(on.network.listeners, IsEmpty());
}

TEST_F(WebSocketServerTest, AFailedListenerIsRetriedAfterFiveSecondsForEver) {
    server->start();
    for (int round = 0; round < 20; ++round) {
        const std::size_t made = on.network.listeners.size();
        on.network.listener().report(ListenerState::failed, refused);
        EXPECT_EQ(statuses.back(), "failed – Address in use");
        EXPECT_FALSE(on.network.listener().isCancelled) << "the failed listener is kept until the retry";
        on.main.advance(4999ms);
        EXPECT_EQ(on.network.listeners.size(), made);
        on.main.advance(1ms);
        EXPECT_EQ(on.network.listeners.size(), made + 1);
    }
}

TEST_F(WebSocketServerTest, AFailureWithNoServerLeftRetriesNothing) {
    server->start();
    on.network.listener().report(ListenerState::failed, refused);
    std::weak_ptr<WebSocketServer> watch = server;
    server.reset();
    EXPECT_TRUE(watch.expired());
    on.main.advance(10s);
    on.network.listener().report(ListenerState::failed, refused);
    on.main.advance(10s);
    EXPECT_EQ(on.network.listeners.size(), 1u);
}

TEST_F(WebSocketServerTest, OtherListenerStatesAreIgnored) {
    server->start();
    on.network.listener().report(ListenerState::setup);
    on.network.listener().report(ListenerState::waiting, refused);
    EXPECT_THAT(statuses, IsEmpty());
}

TEST_F(WebSocketServerTest, ReportsThePortOfTheMomentWhenReady) {
    server->start();
    on.userDefaults.setInteger("port", 9000);
    on.network.listener().report(ListenerState::ready);
    EXPECT_THAT(statuses, ElementsAre("listening on :9000"));
}

TEST_F(WebSocketServerTest, WorksWithoutAStatusCallback) {
    server->setOnStatusChange(nullptr);
    listen();
    EXPECT_THAT(statuses, IsEmpty());
    EXPECT_TRUE(on.network.listener().isStarted());
}

// Connections

TEST_F(WebSocketServerTest, AReadyConnectionIsWelcomedAndRemembered) {
    listen();
    on.log.take();
    auto phone = connectUnready("192.168.1.20");
    EXPECT_EQ(phone->queue(), &on.server);
    phone->report(ConnectionState::preparing);
    EXPECT_EQ(phone->receivesArmed, 0);
    phone->report(ConnectionState::ready);

    EXPECT_EQ(phone->receivesArmed, 1);
    EXPECT_THAT(phone->sent,
                ElementsAre(FakeConnection::Sent{R"({"action":"connected","deviceName":"Desk"})", "welcome"}));
    EXPECT_EQ(store->connectedRemoteIP.get(), std::nullopt);
    on.drain();
    EXPECT_EQ(store->connectedRemoteIP.get(), "192.168.1.20");
    EXPECT_THAT(on.log.lines(),
                ElementsAre("[WebSocketServer] Incoming connection from 192.168.1.20:50000",
                            "[WebSocketServer] Connection 192.168.1.20:50000 state changed to preparing",
                            "[WebSocketServer] Connection 192.168.1.20:50000 state changed to ready",
                            "[WebSocketServer] Connection 192.168.1.20:50000 is ready (handshake complete)"));
}

TEST_F(WebSocketServerTest, AComputerWithoutANameIsCalledMac) {
    on.host.name.reset();
    listen();
    auto phone = connectUnready();
    phone->report(ConnectionState::ready);
    EXPECT_EQ(phone->sent.at(0).text, R"({"action":"connected","deviceName":"Mac"})");
}

TEST_F(WebSocketServerTest, ANameThatCannotBeWrittenFallsBackToTheBareWelcome) {
    on.host.name = "Desk \xff";
    listen();
    auto phone = connectUnready();
    phone->report(ConnectionState::ready);
    EXPECT_EQ(phone->sent.at(0).text, R"({"action":"connected"})");
    EXPECT_EQ(phone->sent.at(0).identifier, "welcome");
}

TEST_F(WebSocketServerTest, AFailedWelcomeIsNotLogged) {
    listen();
    auto phone = connectUnready();
    phone->report(ConnectionState::ready);
    on.log.take();
    phone->completions.front()(refused);
    EXPECT_THAT(on.log.lines(), IsEmpty());
}

TEST_F(WebSocketServerTest, AnEndpointThatIsNoHostAndPortLeavesTheAddressAlone) {
    listen();
    store->connectedRemoteIP.set("10.0.0.1");
    auto phone = std::make_shared<FakeConnection>(Endpoint{.description = "a service"});
    phones.push_back(phone);
    on.network.listener().connect(phone);
    phone->report(ConnectionState::ready);
    on.drain();
    EXPECT_EQ(store->connectedRemoteIP.get(), "10.0.0.1");
}

TEST_F(WebSocketServerTest, ASecondPhoneIsKeptAndBothAreWelcomedAndServed) {
    listen();
    auto first = connectUnready("10.0.0.1");
    first->report(ConnectionState::ready);
    auto second = connectUnready("10.0.0.2");
    second->report(ConnectionState::ready);
    on.drain();
    EXPECT_EQ(first->sent.size(), 1u);
    EXPECT_EQ(second->sent.size(), 1u);
    EXPECT_EQ(store->connectedRemoteIP.get(), "10.0.0.2") << "the last to become ready wins";

    server->findDevice();
    on.drain();
    EXPECT_EQ(first->sent.back(), (FakeConnection::Sent{R"({"action":"find_device"})", "send"}));
    EXPECT_EQ(second->sent.back(), (FakeConnection::Sent{R"({"action":"find_device"})", "send"}));
    EXPECT_EQ(first->sharedTexts.back(), second->sharedTexts.back()) << "one text serves all";
}

TEST_F(WebSocketServerTest, TheFactsGoOnlyWithTheLastPhone) {
    listen();
    auto first = connect("10.0.0.1");
    auto second = connect("10.0.0.2");
    store->availableSIMs.set({{.slot = 0, .carrier = "One"}});
    store->connectedWifiName.set("Home");
    store->connectedDeviceName.set("Phone");
    store->batteryLevel.set(50);
    store->isCharging.set(true);
    store->incomingCallInfo.set(IncomingCallInfo{.number = "1"});

    first->report(ConnectionState::cancelled);
    on.drain();
    EXPECT_EQ(store->availableSIMs.get().size(), 1u);
    EXPECT_EQ(store->connectedRemoteIP.get(), "10.0.0.2");

    second->report(ConnectionState::failed, refused);
    on.drain();
    EXPECT_TRUE(store->availableSIMs.get().empty());
    EXPECT_EQ(store->connectedRemoteIP.get(), std::nullopt);
    EXPECT_EQ(store->connectedWifiName.get(), std::nullopt);
    EXPECT_EQ(store->connectedDeviceName.get(), std::nullopt);
    EXPECT_EQ(store->batteryLevel.get(), 50) << "the battery reading outlives the link";
    EXPECT_TRUE(store->isCharging.get());
    EXPECT_TRUE(store->incomingCallInfo.get().has_value()) << "so does a ringing banner";
}

TEST_F(WebSocketServerTest, TheFactsAreClearedInOrder) {
    listen();
    auto phone = connect();
    std::vector<std::string> order;
    auto sims = store->availableSIMs.observe([&](const auto&) { order.push_back("sims"); });
    auto address = store->connectedRemoteIP.observe([&](const auto&) { order.push_back("address"); });
    auto wifi = store->connectedWifiName.observe([&](const auto&) { order.push_back("wifi"); });
    auto device = store->connectedDeviceName.observe([&](const auto&) { order.push_back("device"); });
    phone->report(ConnectionState::cancelled);
    on.drain();
    EXPECT_THAT(order, ElementsAre("sims", "address", "wifi", "device"));
}

TEST_F(WebSocketServerTest, AFailedConnectionIsLoggedRemovedAndNotCancelled) {
    listen();
    auto phone = connect();
    on.log.take();
    phone->report(ConnectionState::failed, refused);
    EXPECT_FALSE(phone->isCancelled);
    EXPECT_THAT(
        on.log.lines(),
        ElementsAre("[WebSocketServer] Connection 192.168.1.20:50000 state changed to failed(98: Address in "
                    "use)",
                    "[WebSocketServer] Connection 192.168.1.20:50000 failed: Address in use"));
    server->findDevice();
    on.drain();
    EXPECT_THAT(phone->sent, IsEmpty());
}

TEST_F(WebSocketServerTest, ACancelledConnectionIsLogged) {
    listen();
    auto phone = connect();
    on.log.take();
    phone->report(ConnectionState::cancelled);
    EXPECT_THAT(on.log.lines(),
                ElementsAre("[WebSocketServer] Connection 192.168.1.20:50000 state changed to cancelled",
                            "[WebSocketServer] Connection 192.168.1.20:50000 cancelled"));
}

TEST_F(WebSocketServerTest, EveryStateOfAConnectionIsLoggedWithItsReason) {
    const NetworkError error{.localizedDescription = "reset", .description = "104 reset"};
    const std::tuple<ConnectionState, std::optional<NetworkError>, std::string> cases[] = {
        {ConnectionState::setup, std::nullopt, "setup"},
        {ConnectionState::waiting, std::nullopt, "waiting"},
        {ConnectionState::waiting, error, "waiting(104 reset)"},
        {ConnectionState::preparing, std::nullopt, "preparing"},
        {ConnectionState::ready, std::nullopt, "ready"},
        {ConnectionState::failed, std::nullopt, "failed"},
        {ConnectionState::failed, error, "failed(104 reset)"},
        {ConnectionState::cancelled, std::nullopt, "cancelled"},
    };
    listen();
    for (const auto& [state, reason, text] : cases) {
        const auto phone = connectUnready();
        on.log.take();
        phone->report(state, reason);
        EXPECT_EQ(on.log.take().front(), "[WebSocketServer] Connection " + phone->endpoint().description +
                                             " state changed to " + text);
    }
}

TEST_F(WebSocketServerTest, TheSharedServerIsTheOneThatWasSet) {
    WebSocketServer::setShared(server);
    EXPECT_EQ(&WebSocketServer::shared(), server.get());
    WebSocketServer::setShared(nullptr);
}

TEST_F(WebSocketServerTest, ADroppedServerIgnoresItsConnections) {
    listen();
    auto phone = connect();
    server.reset();
    phone->deliver("{}");
    EXPECT_EQ(phone->receivesArmed, 1) << "nothing is armed again";
    on.log.take();
    phone->report(ConnectionState::cancelled);
    EXPECT_THAT(on.log.lines(), IsEmpty());
}

// Receiving

constexpr std::string_view wifi = R"({"action":"device_info","wifiName":"Home"})";

TEST_F(WebSocketServerTest, AMessageInSeveralBlocksIsHandledOnceAndWhole) {
    listen();
    auto phone = connect();
    on.log.take();
    int writes = 0;
    auto observer = store->connectedWifiName.observe([&](const auto&) { ++writes; });
    phone->deliver({.bytes = wifi.substr(0, 7), .hasWebSocketMetadata = true});
    phone->deliver({.bytes = wifi.substr(7, 20), .hasWebSocketMetadata = true});
    on.drain();
    EXPECT_EQ(writes, 0);
    phone->deliver({.bytes = wifi.substr(27), .hasWebSocketMetadata = true, .isComplete = true});
    on.drain();
    EXPECT_EQ(writes, 1);
    EXPECT_EQ(store->connectedWifiName.get(), "Home");
    EXPECT_THAT(on.log.lines(), ElementsAre("[WebSocketServer] Received complete message of 42 bytes from "
                                            "192.168.1.20:50000"));
    EXPECT_EQ(phone->receivesArmed, 4);
}

TEST_F(WebSocketServerTest, AMessageThatEndsInABlockWithoutBytesIsStillHandled) {
    listen();
    auto phone = connect();
    phone->deliver({.bytes = wifi});
    phone->deliver({.hasWebSocketMetadata = true, .isComplete = true});
    on.drain();
    EXPECT_EQ(store->connectedWifiName.get(), "Home");
}

TEST_F(WebSocketServerTest, BlocksOfTwoPhonesDoNotMix) {
    listen();
    auto first = connect("10.0.0.1");
    auto second = connect("10.0.0.2");
    first->deliver({.bytes = wifi.substr(0, 10)});
    second->deliver(R"({"action":"connected","deviceName":"Two"})");
    first->deliver({.bytes = wifi.substr(10), .hasWebSocketMetadata = true, .isComplete = true});
    on.drain();
    EXPECT_EQ(store->connectedWifiName.get(), "Home");
    EXPECT_EQ(store->connectedDeviceName.get(), "Two");
}

TEST_F(WebSocketServerTest, AnEmptyMessageIsNeitherLoggedNorHandled) {
    listen();
    auto phone = connect();
    on.log.take();
    phone->deliver("");
    phone->deliver({.hasWebSocketMetadata = true, .isComplete = true});
    EXPECT_THAT(on.log.lines(), IsEmpty());
    EXPECT_EQ(phone->receivesArmed, 3);
}

TEST_F(WebSocketServerTest, AMessageWithoutWebSocketMetadataIsLoggedAndDropped) {
    listen();
    auto phone = connect();
    on.log.take();
    phone->deliver({.bytes = wifi, .hasWebSocketMetadata = false, .isComplete = true});
    on.drain();
    EXPECT_EQ(on.log.lines().size(), 1u);
    EXPECT_EQ(store->connectedWifiName.get(), std::nullopt);
    EXPECT_EQ(phone->receivesArmed, 2);
}

TEST_F(WebSocketServerTest, AReceiveErrorDropsTheMessageAndTheConnectionStaysListed) {
    listen();
    auto phone = connect();
    phone->deliver({.bytes = wifi.substr(0, 10)});
    on.log.take();
    phone->deliver({.bytes = wifi.substr(10), .error = refused});
    on.drain();
    EXPECT_THAT(on.log.lines(),
                ElementsAre("[WebSocketServer] Receive error from 192.168.1.20:50000: 98: Address in use"));
    EXPECT_EQ(store->connectedWifiName.get(), std::nullopt);
    EXPECT_EQ(phone->receivesArmed, 2) << "no further receive";
    server->findDevice();
    on.drain();
    EXPECT_EQ(phone->sent.size(), 1u) << "still listed";
    EXPECT_EQ(store->connectedRemoteIP.get(), "192.168.1.20");
}

TEST_F(WebSocketServerTest, ABufferGoesWithItsConnection) {
    listen();
    auto phone = connect();
    phone->deliver({.bytes = wifi.substr(0, 10)});
    phone->report(ConnectionState::failed, refused);
    // The pending receive of a removed connection starts from nothing.
    phone->deliver(wifi);
    on.drain();
    EXPECT_EQ(store->connectedWifiName.get(), "Home");
}

// Sending

TEST_F(WebSocketServerTest, WithNoPhoneTextsAreDroppedInSilence) {
    listen();
    on.log.take();
    server->requestSmsHistory();
    on.drain();
    auto phone = connect();
    EXPECT_THAT(phone->sent, IsEmpty());
    EXPECT_THAT(on.log.lines(), Not(Contains(HasSubstr("Send error"))));
}

TEST_F(WebSocketServerTest, AConnectionThatIsNotReadyGetsTheTextLikeTheOthers) {
    listen();
    auto phone = connectUnready();
    server->hangupCall();
    on.drain();
    EXPECT_EQ(phone->sent.size(), 1u);
}

TEST_F(WebSocketServerTest, AFailedSendIsLoggedWithoutItsArea) {
    listen();
    auto phone = connect();
    phone->completions.clear();
    server->hangupCall();
    on.drain();
    on.log.take();
    phone->completions.front()(std::nullopt);
    EXPECT_THAT(on.log.lines(), IsEmpty());
    phone->completions.front()(refused);
    EXPECT_THAT(on.log.lines(), ElementsAre("Send error: Address in use"));
}

TEST_F(WebSocketServerTest, TextsLeaveInTheOrderOfTheCallsAndNotInsideThem) {
    listen();
    auto phone = connect();
    server->send("one");
    server->send("two");
    EXPECT_THAT(phone->sent, IsEmpty());
    on.drain();
    ASSERT_EQ(phone->sent.size(), 2u);
    EXPECT_EQ(phone->sent[0].text, "one");
    EXPECT_EQ(phone->sent[1].text, "two");
}

TEST_F(WebSocketServerTest, ATextOfADroppedServerGoesNowhere) {
    listen();
    auto phone = connect();
    server->send("late");
    server.reset();
    on.drain();
    EXPECT_THAT(phone->sent, IsEmpty());
}

TEST_F(WebSocketServerTest, WorksWithoutAStore) {
    listen();
    store.reset();
    auto phone = connect();
    receive(*phone, wifi);
    phone->report(ConnectionState::cancelled);
    on.drain();
    server->stop();
    on.drain();
    EXPECT_TRUE(phone->sent.empty());
}

// Outbound operations, on the wire of every phone

TEST_F(WebSocketServerTest, EveryOperationReachesEveryPhone) {
    listen();
    auto first = connect("10.0.0.1");
    auto second = connect("10.0.0.2");
    server->findDevice();
    server->sendMediaCommand("next");
    server->sendNavCommand("home");
    server->requestSmsHistory();
    server->requestCallHistory();
    server->sendClipboard("a/b \"c\"");
    server->makeCall("+44\"", 1);
    server->answerCall();
    server->hangupCall();
    server->toggleSpeaker(true);
    server->toggleMute(false);
    server->sendReply("key", "text");
    server->sendSms("123", "hi\n", 0);
    on.drain();
    std::vector<std::string> texts;
    for (const auto& sent : first->sent) {
        EXPECT_EQ(sent.identifier, "send");
        texts.push_back(sent.text);
    }
    EXPECT_THAT(texts,
                ElementsAre(R"({"action":"find_device"})", R"({"action":"media_command","command":"next"})",
                            R"({"action":"nav_command","command":"home"})", R"({"action":"get_sms_history"})",
                            R"({"action":"get_call_history"})", R"({"action":"clipboard","text":"a\/b \"c\""})",
                            R"({"action":"make_call","number":"+44"","simSlot":1})",
                            R"({"action":"answer_call"})", R"({"action":"hangup_call"})",
                            R"({"action":"toggle_speaker","enabled":true})",
                            R"({"action":"toggle_mute","enabled":false})",
                            R"({"action":"reply","key":"key","message":"text"})",
                            R"({"action":"send_sms","number":"123","body":"hi\n","simSlot":0})"));
    EXPECT_EQ(first->sent, second->sent);
}

TEST_F(WebSocketServerTest, TextThatIsNotUtf8IsNotSent) {
    listen();
    auto phone = connect();
    server->sendClipboard("\xff");
    server->sendReply("\xff", "text");
    server->sendSms("1", "\xc3", 0);
    on.drain();
    EXPECT_THAT(phone->sent, IsEmpty());
}

} // namespace
} // namespace velloway::test
