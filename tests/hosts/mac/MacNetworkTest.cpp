#include "hosts/mac/MacNetwork.h"
#include "hosts/mac/FakeDispatch.h"
#include "hosts/mac/FakeNetworkFramework.h"
#include "hosts/mac/FakeObject.h"
#include "hosts/mac/MacDispatchQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

namespace velloway::test {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

class MacNetworkTest : public testing::Test {
protected:
    MacNetworkTest() { fakeNetworkFramework = {}; }
    ~MacNetworkTest() override {
        connection.reset();
        listener.reset();
        phone.reset();
        fakeDispatch::runAll();
        queue.reset();
        EXPECT_EQ(FakeObject::alive, aliveBefore) << "objects of the platform are leaked";
        EXPECT_EQ(activities, 0) << "an activity lasts without a connection";
    }

    std::shared_ptr<NetworkListener> make() {
        return network.makeListener({.port = 8765, .allowLocalEndpointReuse = true, .autoReplyPing = true},
                                    error);
    }
    /// A connection that is ready, and its phone.
    void connect() {
        listener = make();
        listener->setNewConnectionHandler([this](auto accepted) { connection = std::move(accepted); });
        listener->start(*queue);
        fakeDispatch::runAll();
        phone = dialFake(8765);
        fakeDispatch::runAll();
        connection->start(*queue);
        phone->shakeHands();
        fakeDispatch::runAll();
    }
    ReceivedContent receive(std::string* bytes) {
        ReceivedContent got;
        connection->receiveMessage([&](const ReceivedContent& content) {
            *bytes = content.bytes.value_or("nothing");
            got = content;
        });
        fakeDispatch::runAll();
        return got;
    }

    const int aliveBefore = FakeObject::alive;
    int activities = 0;
    MacNetwork network{[this] {
        ++activities;
        return std::shared_ptr<void>(&activities, [this](void*) { --activities; });
    }};
    std::unique_ptr<MacDispatchQueue> queue = std::make_unique<MacDispatchQueue>("ws.server");
    NetworkError error;
    std::shared_ptr<NetworkListener> listener;
    std::shared_ptr<FakePhone> phone;
    std::shared_ptr<NetworkConnection> connection;
};

TEST_F(MacNetworkTest, AsksForPlainTcpWithWebsocketsOnTopAndNothingElse) {
    listener = make();
    listener->setStateHandler([](ListenerState, const auto&) {});
    listener->start(*queue);
    listener->cancel();
    EXPECT_THAT(fakeNetworkFramework.calls,
                ElementsAre("parameters tls=off tcp=default", "reuse local address yes",
                            "prepend websocket 13 with pongs",
                            "listener on 8765: websocket 13 with pongs, reuse", "listener queue",
                            "listener state handler", "new connection handler", "listener start",
                            "listener cancel"));
}

TEST_F(MacNetworkTest, AListenerThatThePlatformRefusesIsAnErrorWithAText) {
    fakeNetworkFramework.refusesListeners = true;
    EXPECT_EQ(make(), nullptr);
    EXPECT_EQ(error.localizedDescription, "The listener could not be created");
}

TEST_F(MacNetworkTest, AnyPortNumberIsTaken) {
    EXPECT_TRUE(network.acceptsPort(0));
    EXPECT_TRUE(network.acceptsPort(65535));
}

TEST_F(MacNetworkTest, AnotherVersionOfWebsocketsIsRefused) {
    EXPECT_EQ(network.makeListener({.port = 1, .webSocketVersion = 8}, error), nullptr);
    EXPECT_FALSE(error.localizedDescription.empty());
}

TEST_F(MacNetworkTest, ADroppedListenerHandsOverNoConnectionThatIsOnItsWay) {
    listener = make();
    int handedOver = 0;
    listener->setNewConnectionHandler([&](const auto&) { ++handedOver; });
    listener->start(*queue);
    fakeDispatch::runAll();
    phone = dialFake(8765);
    listener.reset();
    fakeDispatch::runAll();
    EXPECT_EQ(handedOver, 0);
}

TEST_F(MacNetworkTest, AMessageInSeveralRegionsComesInOnePiece) {
    connect();
    fakeNetworkFramework.regions = 7;
    phone->sends("abcdefghijklmnopqrstuvwxyz");
    std::string bytes;
    const ReceivedContent got = receive(&bytes);
    EXPECT_EQ(bytes, "abcdefghijklmnopqrstuvwxyz");
    EXPECT_TRUE(got.hasWebSocketMetadata);
    EXPECT_TRUE(got.isComplete);
    EXPECT_FALSE(got.error);
}

TEST_F(MacNetworkTest, AnIncompleteBlockWithoutMetadataIsPassedThroughAsSuch) {
    connect();
    phone->sends("part", false, false);
    std::string bytes;
    const ReceivedContent got = receive(&bytes);
    EXPECT_EQ(bytes, "part");
    EXPECT_FALSE(got.hasWebSocketMetadata);
    EXPECT_FALSE(got.isComplete);
}

TEST_F(MacNetworkTest, AReceiveErrorBringsNoBytesAndBothTexts) {
    connect();
    phone->fails(ECONNRESET);
    std::string bytes;
    const ReceivedContent got = receive(&bytes);
    EXPECT_EQ(bytes, "nothing");
    EXPECT_FALSE(got.isComplete);
    ASSERT_TRUE(got.error);
    EXPECT_EQ(got.error->localizedDescription, "Connection reset by peer");
    EXPECT_EQ(got.error->description, "POSIX error 104: Connection reset by peer");
}

TEST_F(MacNetworkTest, ATextLeavesAsOneCompleteTextFrameUnderItsIdentifierAndIsNotCopied) {
    connect();
    const auto text = std::make_shared<const std::string>("h\u00e9llo");
    connection->send(text, "welcome", nullptr);
    EXPECT_GT(text.use_count(), 1) << "the bytes must be held until they have left";
    fakeDispatch::runAll();
    ASSERT_EQ(phone->farEnd->frames.size(), 1u);
    const FakePhone::Frame& frame = phone->farEnd->frames.front();
    EXPECT_EQ(frame.text, "h\u00e9llo");
    EXPECT_EQ(frame.identifier, "welcome");
    EXPECT_EQ(frame.opcode, 1);
    EXPECT_TRUE(frame.isComplete);
    EXPECT_EQ(frame.at, text->data());
    EXPECT_EQ(text.use_count(), 1) << "the bytes must be given back once they have left";
}

TEST_F(MacNetworkTest, TheFarEndShowsItselfByAddressOrNameOrNotAtAll) {
    connect();
    EXPECT_EQ(connection->endpoint().host, "10.0.0.7");
    EXPECT_EQ(connection->endpoint().description, "10.0.0.7:50000");
    fakeNetworkFramework.address = "::ffff:10.0.0.9";
    EXPECT_EQ(connection->endpoint().host, "10.0.0.9");
    fakeNetworkFramework.address = "fe80::1%en0";
    EXPECT_EQ(connection->endpoint().description, "fe80::1%en0.50000");
    fakeNetworkFramework.endpointKind = FakeNetworkFramework::EndpointKind::host;
    EXPECT_EQ(connection->endpoint().description, "phone.local:50000");
    fakeNetworkFramework.endpointKind = FakeNetworkFramework::EndpointKind::service;
    EXPECT_FALSE(connection->endpoint().host);
    EXPECT_FALSE(connection->endpoint().description.empty());
}

TEST_F(MacNetworkTest, ADroppedConnectionIsEndedWithoutAClosingHandshake) {
    connect();
    fakeNetworkFramework.calls.clear();
    connection.reset();
    EXPECT_THAT(fakeNetworkFramework.calls, ElementsAre("connection force cancel"));
    fakeDispatch::runAll();
    EXPECT_TRUE(phone->farEnd->isEnded);
}

/// How a far end can go away.
struct Ending {
    const char* name;
    void (*happens)(FakePhone&);
    /// What the receive brings.
    const char* bytes;
    bool isError;
};
constexpr Ending endings[] = {
    {"CloseFrameWithReason", [](FakePhone& phone) { phone.closes(1001, "going away"); }, "going away", false},
    {"CloseFrameWithCodeAlone", [](FakePhone& phone) { phone.closes(1000, ""); }, "", false},
    {"EmptyCloseFrame", [](FakePhone& phone) { phone.closes(std::nullopt, ""); }, "nothing", false},
    {"EndOfStream", [](FakePhone& phone) { phone.endsStream(); }, "nothing", false},
    {"ReceiveError", [](FakePhone& phone) { phone.failsToReceive(ENOTCONN); }, "nothing", true},
};

class MacNetworkEndingTest : public MacNetworkTest, public testing::WithParamInterface<Ending> {};

TEST_P(MacNetworkEndingTest, IsFollowedByTheStateCancelledAndBringsNoFurtherMessages) {
    connect();
    std::vector<std::string> notes;
    connection->setStateHandler(
        [&](ConnectionState state, const auto&) { notes.push_back("state " + std::to_string(int(state))); });
    GetParam().happens(*phone);
    std::string bytes;
    connection->receiveMessage([&](const ReceivedContent& content) {
        bytes = content.bytes.value_or("nothing");
        notes.push_back(content.error ? "error" : "received");
        if (!content.error) {
            connection->receiveMessage(
                [&](const ReceivedContent& next) { notes.push_back(next.error ? "error" : "received"); });
        }
    });
    fakeDispatch::runAll();
    EXPECT_EQ(bytes, GetParam().bytes);
    const std::string cancelled = "state " + std::to_string(int(ConnectionState::cancelled));
    if (GetParam().isError) {
        EXPECT_THAT(notes, ElementsAre("error", cancelled));
    } else {
        EXPECT_THAT(notes, ElementsAre("received", "error", cancelled));
    }
    EXPECT_EQ(activities, 0);
}

INSTANTIATE_TEST_SUITE_P(, MacNetworkEndingTest, testing::ValuesIn(endings),
                         [](const auto& it) { return std::string(it.param.name); });

TEST_F(MacNetworkTest, AFailureThatThePlatformReportsAfterTheReceiveIsTheLastState) {
    connect();
    std::vector<ConnectionState> states;
    connection->setStateHandler([&](ConnectionState state, const auto&) { states.push_back(state); });
    phone->fails(ECONNRESET);
    std::string bytes;
    EXPECT_TRUE(receive(&bytes).error);
    EXPECT_THAT(states, ElementsAre(ConnectionState::failed));
}

TEST_F(MacNetworkTest, AnEmptyMessageEndsNothing) {
    connect();
    phone->sends("");
    std::string bytes;
    receive(&bytes);
    phone->sends("more");
    receive(&bytes);
    EXPECT_EQ(bytes, "more");
    EXPECT_FALSE(phone->farEnd->isEnded);
}

TEST_F(MacNetworkTest, AConnectionThatIsDroppedInsideItsReceiveIsEndedOnce) {
    connect();
    phone->failsToReceive(ECONNRESET);
    fakeNetworkFramework.calls.clear();
    connection->receiveMessage([&](const ReceivedContent&) { connection.reset(); });
    fakeDispatch::runAll();
    EXPECT_THAT(fakeNetworkFramework.calls, ElementsAre("connection force cancel"));
}

TEST_F(MacNetworkTest, AnActivityLastsWhileAConnectionIsReadyAndEachHasItsOwn) {
    connect();
    EXPECT_EQ(activities, 1);
    auto firstConnection = std::move(connection);
    auto firstPhone = std::move(phone);
    phone = dialFake(8765);
    fakeDispatch::runAll();
    connection->start(*queue);
    fakeDispatch::runAll();
    EXPECT_EQ(activities, 1) << "begun before the handshake";
    phone->shakeHands();
    fakeDispatch::runAll();
    EXPECT_EQ(activities, 2);
    firstConnection->cancel();
    fakeDispatch::runAll();
    EXPECT_EQ(activities, 1);
    phone->fails(ECONNRESET);
    fakeDispatch::runAll();
    EXPECT_EQ(activities, 0);
}

TEST(MacDispatchQueueTest, IsASerialQueueOfUtilityQualityWithItsLabel) {
    const MacDispatchQueue queue("ws.server");
    const auto facts = fakeDispatch::factsOf(queue.native());
    EXPECT_EQ(facts.label, "ws.server");
    EXPECT_EQ(facts.qualityOfService, 0x11u);
    EXPECT_EQ(facts.relativePriority, 0);
}

TEST(MacDispatchQueueTest, RunsJobsLaterInOrderAndKnowsWhenItIsCurrent) {
    MacDispatchQueue queue("one");
    MacDispatchQueue other("other");
    std::vector<std::string> notes;
    queue.async([&] {
        notes.push_back(queue.isCurrent() && !other.isCurrent() ? "first" : "wrong queue");
        queue.async([&] { notes.push_back("third"); });
        notes.push_back("second");
    });
    EXPECT_TRUE(notes.empty());
    EXPECT_FALSE(queue.isCurrent());
    fakeDispatch::runAll();
    EXPECT_THAT(notes, ElementsAre("first", "second", "third"));
}

TEST(MacDispatchQueueTest, RunsDelayedJobsWhenTheyFallDueAndEqualOnesInOrder) {
    MacDispatchQueue queue("timed");
    std::vector<std::string> notes;
    queue.asyncAfter(2ms, [&] { notes.push_back("late"); });
    queue.asyncAfter(1ms, [&] { notes.push_back("soon"); });
    queue.asyncAfter(1ms, [&] { notes.push_back("soon after"); });
    queue.asyncAfter(-1ms, [&] { notes.push_back("overdue"); });
    fakeDispatch::advance(0ms);
    EXPECT_THAT(notes, ElementsAre("overdue"));
    fakeDispatch::advance(1ms);
    EXPECT_THAT(notes, ElementsAre("overdue", "soon", "soon after"));
    fakeDispatch::advance(1ms);
    EXPECT_THAT(notes, ElementsAre("overdue", "soon", "soon after", "late"));
}

TEST(MacDispatchQueueTest, AJobIsDestroyedAfterItHasRun) {
    MacDispatchQueue queue("one");
    const auto held = std::make_shared<int>();
    queue.async([held] {});
    EXPECT_EQ(held.use_count(), 2);
    fakeDispatch::runAll();
    EXPECT_EQ(held.use_count(), 1);
}

} // namespace
} // namespace velloway::test
