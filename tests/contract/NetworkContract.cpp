#include "contract/NetworkContract.h"
#include "fakes/FakeTextSeries.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <utility>
#include <vector>

namespace velloway::test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;

std::string nameOf(ConnectionState state) {
    constexpr const char* names[] = {"setup", "waiting", "preparing", "ready", "failed", "cancelled"};
    return names[static_cast<int>(state)];
}

std::string nameOf(ListenerState state) {
    constexpr const char* names[] = {"setup", "waiting", "ready", "failed", "cancelled"};
    return names[static_cast<int>(state)];
}

/// What came back, in order; written on the queue, read by the test.
class Notes {
public:
    void add(std::string note) {
        std::lock_guard lock(mutex_);
        notes_.push_back(std::move(note));
    }
    std::vector<std::string> all() const {
        std::lock_guard lock(mutex_);
        return notes_;
    }
    std::size_t count() const { return all().size(); }
    bool have(const std::string& note) const {
        const auto notes = all();
        return std::find(notes.begin(), notes.end(), note) != notes.end();
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::string> notes_;
};

class NetworkContract : public testing::TestWithParam<NetworkImplementation> {
protected:
    ~NetworkContract() override {
        // What the callbacks hold goes before the world that they came from.
        onQueue([this] {
            for (auto& connection : connections) {
                connection->cancel();
            }
            connections.clear();
        });
        listener.reset();
        onQueue([] {});
    }

    std::shared_ptr<NetworkListener> listen(std::uint16_t onPort) {
        NetworkError error;
        auto made = world->network().makeListener(
            {.port = onPort, .allowLocalEndpointReuse = true, .autoReplyPing = true}, error);
        made->setStateHandler([this](ListenerState state, const auto& failure) {
            checkQueue();
            listenerNotes.add(nameOf(state) + (failure ? ": " + failure->localizedDescription : ""));
        });
        made->setNewConnectionHandler([this](std::shared_ptr<NetworkConnection> connection) {
            checkQueue();
            accept(std::move(connection));
        });
        made->start(world->queue());
        return made;
    }

    void listen() {
        port = world->freePort();
        listener = listen(port);
        ASSERT_TRUE(runUntil([&] { return listenerNotes.have("ready"); }));
    }

    void accept(std::shared_ptr<NetworkConnection> connection) {
        // The handler holds the connection, as the users of the port do.
        connection->setStateHandler([this, connection](ConnectionState state, const auto& failure) {
            checkQueue();
            notes.add(nameOf(state));
            hasErrorText = failure && !failure->localizedDescription.empty();
            if (state == ConnectionState::ready && whenReady) {
                whenReady(*connection);
            }
        });
        connections.push_back(connection);
        if (startsAtOnce) {
            connection->start(world->queue());
        }
        ++accepted;
    }

    std::unique_ptr<Peer> dial() {
        const int before = accepted;
        auto peer = world->dial(*listener, port);
        EXPECT_TRUE(runUntil([&] { return accepted > before; }));
        return peer;
    }

    /// A peer whose connection is ready.
    std::unique_ptr<Peer> connect() {
        listen();
        auto peer = dial();
        EXPECT_TRUE(peer->shakeHands());
        EXPECT_TRUE(runUntil([&] { return notes.have("ready"); }));
        return peer;
    }

    void receiveAll(NetworkConnection& connection) {
        connection.receiveMessage([this, &connection](const ReceivedContent& content) {
            checkQueue();
            if (content.error) {
                notes.add("receive error");
                return;
            }
            notes.add(std::string(content.isComplete ? "" : "part ") +
                      (content.hasWebSocketMetadata ? "got " : "got bare ") +
                      std::string(content.bytes.value_or("nothing")));
            receiveAll(connection);
        });
    }

    void send(NetworkConnection& connection, const std::string& text) {
        connection.send(std::make_shared<std::string>(text), "send", [this, text](const auto& error) {
            checkQueue();
            notes.add((error ? "not sent " : "sent ") + text);
        });
    }

    void send(NetworkConnection& connection, std::uint64_t index) {
        connection.send(series, index, "send", [this](const auto& error) {
            checkQueue();
            notes.add(error ? "not sent" : "sent");
        });
    }
    static std::string textOf(std::uint64_t index) { return "text " + std::to_string(index); }

    /// Runs `act` on the queue and waits for it.
    void onQueue(const std::function<void()>& act) {
        std::atomic<bool> done = false;
        world->queue().async([&] {
            act();
            done = true;
        });
        ASSERT_TRUE(runUntil([&] { return done.load(); }));
    }

    bool runUntil(const std::function<bool()>& condition) { return world->runUntil(condition); }
    bool runUntilNoted(const std::string& note) {
        return runUntil([&] { return notes.have(note); });
    }
    void checkQueue() { EXPECT_TRUE(world->queue().isCurrent()); }
    NetworkConnection& connection() { return *connections.front(); }

    std::unique_ptr<NetworkWorld> world = GetParam().make();
    std::shared_ptr<FakeTextSeries> series = std::make_shared<FakeTextSeries>(world->queue(), textOf);
    std::uint16_t port = 0;
    std::shared_ptr<NetworkListener> listener;
    Notes listenerNotes;
    Notes notes;
    std::atomic<int> accepted = 0;
    std::atomic<bool> hasErrorText = false;
    // Queue only, once something listens.
    std::vector<std::shared_ptr<NetworkConnection>> connections;
    std::function<void(NetworkConnection&)> whenReady;
    bool startsAtOnce = true;
};

// Listening.

TEST_P(NetworkContract, AListenerIsReadyAndThenCancelled) {
    listen();
    listener->cancel();
    ASSERT_TRUE(runUntil([&] { return listenerNotes.have("cancelled"); }));
    EXPECT_THAT(listenerNotes.all(), ElementsAre("ready", "cancelled"));
}

TEST_P(NetworkContract, ASecondCancelOfAListenerIsNotReported) {
    listen();
    listener->cancel();
    listener->cancel();
    onQueue([] {});
    EXPECT_THAT(listenerNotes.all(), ElementsAre("ready", "cancelled"));
}

TEST_P(NetworkContract, AListenerOnAPortInUseFailsWithATextAndCanStillBeCancelled) {
    listen();
    const auto second = listen(port);
    ASSERT_TRUE(runUntil([&] { return listenerNotes.count() == 2; }));
    second->cancel();
    ASSERT_TRUE(runUntil([&] { return listenerNotes.count() == 3; }));
    EXPECT_THAT(listenerNotes.all(), ElementsAre("ready", "failed: Address already in use", "cancelled"));
}

TEST_P(NetworkContract, APortIsFreeAgainForAListenerStartedRightAfterTheCancel) {
    auto peer = connect();
    for (int round = 1; round <= 5; ++round) {
        listener->cancel();
        listener = listen(port);
        ASSERT_TRUE(runUntil([&] { return listenerNotes.count() == std::size_t(1 + 2 * round); }));
    }
    EXPECT_THAT(listenerNotes.all(), Not(testing::Contains(testing::StartsWith("failed"))));
    EXPECT_TRUE(dial()->shakeHands());
}

TEST_P(NetworkContract, AListenerThatIsDroppedGivesItsPortBackInSilence) {
    listen();
    listener.reset();
    listener = listen(port);
    ASSERT_TRUE(runUntil([&] { return listenerNotes.count() == 2; }));
    EXPECT_THAT(listenerNotes.all(), ElementsAre("ready", "ready"));
}

TEST_P(NetworkContract, ConnectionsOutliveTheirListener) {
    auto peer = connect();
    listener->cancel();
    ASSERT_TRUE(runUntil([&] { return listenerNotes.have("cancelled"); }));
    onQueue([&] { send(connection(), "still here"); });
    EXPECT_EQ(peer->nextText(), "still here");
}

// Becoming ready.

TEST_P(NetworkContract, AConnectionPreparesAndIsReadyAfterTheHandshake) {
    listen();
    auto peer = dial();
    ASSERT_TRUE(runUntilNoted("preparing"));
    EXPECT_FALSE(notes.have("ready"));
    EXPECT_TRUE(peer->shakeHands());
    ASSERT_TRUE(runUntilNoted("ready"));
    EXPECT_THAT(notes.all(), ElementsAre("preparing", "ready"));
}

TEST_P(NetworkContract, AConnectionTellsTheHostOfItsFarEnd) {
    listen();
    auto peer = dial();
    Endpoint endpoint;
    onQueue([&] { endpoint = connection().endpoint(); });
    EXPECT_EQ(endpoint.host, world->hostOfPeers());
    EXPECT_THAT(endpoint.description, testing::StartsWith(world->hostOfPeers() + ":"));
}

TEST_P(NetworkContract, SeveralConnectionsAreServedSideBySide) {
    whenReady = [this](NetworkConnection& connection) { receiveAll(connection); };
    listen();
    auto first = dial();
    auto second = dial();
    EXPECT_TRUE(second->shakeHands());
    EXPECT_TRUE(first->shakeHands());
    second->sendText("from the second");
    ASSERT_TRUE(runUntilNoted("got from the second"));
    first->sendText("from the first");
    EXPECT_TRUE(runUntilNoted("got from the first"));
}

// Receiving.

TEST_P(NetworkContract, EachMessageComesWholeInOrderAndMarkedAsAMessage) {
    whenReady = [this](NetworkConnection& connection) { receiveAll(connection); };
    auto peer = connect();
    peer->sendText("one");
    peer->sendBinary("two");
    peer->sendText("");
    peer->sendText("four");
    ASSERT_TRUE(runUntilNoted("got four"));
    EXPECT_THAT(notes.all(), ElementsAre("preparing", "ready", "got one", "got two", "got ", "got four"));
}

TEST_P(NetworkContract, AMessageWaitsUntilItIsAskedFor) {
    auto peer = connect();
    peer->sendText("early");
    peer->sendText("late");
    onQueue([&] {
        connection().receiveMessage(
            [&](const ReceivedContent& content) { notes.add("got " + std::string(*content.bytes)); });
    });
    ASSERT_TRUE(runUntilNoted("got early"));
    onQueue([] {});
    EXPECT_FALSE(notes.have("got late"));
    onQueue([&] { receiveAll(connection()); });
    EXPECT_TRUE(runUntilNoted("got late"));
}

TEST_P(NetworkContract, AReceiveAskedForBeforeTheHandshakeIsAnsweredAfterIt) {
    listen();
    auto peer = dial();
    onQueue([&] { receiveAll(connection()); });
    EXPECT_TRUE(peer->shakeHands());
    peer->sendText("hello");
    ASSERT_TRUE(runUntilNoted("got hello"));
    EXPECT_THAT(notes.all(), ElementsAre("preparing", "ready", "got hello"));
}

TEST_P(NetworkContract, LargeMessagesComeWhole) {
    whenReady = [this](NetworkConnection& connection) { receiveAll(connection); };
    auto peer = connect();
    const std::string large(3'000'000, 'x');
    for (int round = 0; round < 3; ++round) {
        peer->sendText(large);
    }
    peer->sendText("small");
    ASSERT_TRUE(runUntilNoted("got small"));
    EXPECT_THAT(notes.all(),
                ElementsAre("preparing", "ready", "got " + large, "got " + large, "got " + large, "got small"));
}

TEST_P(NetworkContract, AMessageThatIsKeptStaysAsItIsWhenOthersHaveCome) {
    const std::string large(300'000, 'x');
    std::shared_ptr<const void> owner;
    std::string_view kept;
    whenReady = [&](NetworkConnection& connection) {
        connection.receiveMessage([&](const ReceivedContent& content) {
            owner = content.keep ? content.keep() : nullptr;
            kept = *content.bytes;
            EXPECT_EQ(kept, large);
            receiveAll(connection);
        });
    };
    auto peer = connect();
    peer->sendText(large);
    for (int round = 0; round < 3; ++round) {
        peer->sendText(std::string(300'000, 'y'));
    }
    peer->sendText("small");
    ASSERT_TRUE(runUntilNoted("got small"));
    EXPECT_TRUE(!owner || kept == large);
}

// Sending.

TEST_P(NetworkContract, TextsLeaveInTheOrderOfTheCallsAndEachSendIsAnswered) {
    auto peer = connect();
    std::vector<std::string> expected{"preparing", "ready"};
    onQueue([&] {
        for (int index = 0; index < 200; ++index) {
            send(connection(), std::to_string(index));
            expected.push_back("sent " + std::to_string(index));
        }
    });
    for (int index = 0; index < 200; ++index) {
        ASSERT_EQ(peer->nextText(), std::to_string(index));
    }
    ASSERT_TRUE(runUntilNoted("sent 199"));
    EXPECT_THAT(notes.all(), ElementsAreArray(expected));
}

TEST_P(NetworkContract, TextsSentBeforeTheHandshakeLeaveAfterItInOrder) {
    listen();
    auto peer = dial();
    onQueue([&] {
        send(connection(), "first");
        send(connection(), "second");
    });
    EXPECT_FALSE(notes.have("sent first"));
    EXPECT_TRUE(peer->shakeHands());
    EXPECT_EQ(peer->nextText(), "first");
    EXPECT_EQ(peer->nextText(), "second");
}

TEST_P(NetworkContract, OneTextServesSeveralConnectionsWithoutACopy) {
    listen();
    auto first = dial();
    auto second = dial();
    EXPECT_TRUE(first->shakeHands());
    EXPECT_TRUE(second->shakeHands());
    auto text = std::make_shared<const std::string>(1'000'000, 'y');
    onQueue([&] {
        for (auto& each : connections) {
            each->send(text, "send", {});
        }
    });
    EXPECT_EQ(first->nextText(), *text);
    EXPECT_EQ(second->nextText(), *text);
}

// Sending series.

TEST_P(NetworkContract, TextsOfASeriesLeaveInTheOrderOfAllSendsAndEachIsAnswered) {
    auto peer = connect();
    for (const bool isAtHand : {false, true}) {
        series->isAtHand = isAtHand;
        onQueue([&] {
            send(connection(), "first");
            send(connection(), 0);
            send(connection(), 1);
            send(connection(), "between");
            send(connection(), 2);
            send(connection(), "last");
        });
        for (const char* text : {"first", "text 0", "text 1", "between", "text 2", "last"}) {
            ASSERT_EQ(peer->nextText(), text);
        }
    }
    ASSERT_TRUE(runUntil([&] { return notes.count() == 14; }));
    const std::vector<std::string> once{"sent first", "sent", "sent", "sent between", "sent", "sent last"};
    std::vector<std::string> expected{"preparing", "ready"};
    expected.insert(expected.end(), once.begin(), once.end());
    expected.insert(expected.end(), once.begin(), once.end());
    EXPECT_THAT(notes.all(), ElementsAreArray(expected));
}

TEST_P(NetworkContract, ASeriesThatGrowsWhileItLeavesIsSentToItsEnd) {
    auto peer = connect();
    for (std::uint64_t index = 0; index < 200; ++index) {
        onQueue([&] { send(connection(), index); });
    }
    for (std::uint64_t index = 0; index < 200; ++index) {
        ASSERT_EQ(peer->nextText(), textOf(index));
    }
    EXPECT_TRUE(runUntil([&] { return notes.count() == 202; }));
}

TEST_P(NetworkContract, TextsOfASeriesThatAreSentBeforeTheHandshakeLeaveAfterIt) {
    listen();
    auto peer = dial();
    onQueue([&] {
        send(connection(), 0);
        send(connection(), "second");
    });
    EXPECT_EQ(series->madeCount, 0) << "nobody can take it";
    EXPECT_TRUE(peer->shakeHands());
    EXPECT_EQ(peer->nextText(), "text 0");
    EXPECT_EQ(peer->nextText(), "second");
}

TEST_P(NetworkContract, ATextThatCannotBeMadeIsLeftOutAndItsSendGetsTheError) {
    series->isBroken = true;
    auto peer = connect();
    onQueue([&] {
        send(connection(), 0);
        send(connection(), 1);
        send(connection(), "text");
    });
    EXPECT_EQ(peer->nextText(), "text");
    ASSERT_TRUE(runUntilNoted("sent text"));
    EXPECT_THAT(notes.all(), ElementsAre("preparing", "ready", "not sent", "not sent", "sent text"));
}

TEST_P(NetworkContract, LargeTextsOfASeriesComeWholeToSeveralConnections) {
    const auto large = [](std::uint64_t index) {
        std::string text(2'000'000, 'a');
        for (std::size_t at = 0; at < text.size(); at += 7) {
            text[at] = static_cast<char>('a' + (at + index) % 26);
        }
        return text;
    };
    series = std::make_shared<FakeTextSeries>(world->queue(), large);
    listen();
    auto first = dial();
    auto second = dial();
    EXPECT_TRUE(first->shakeHands());
    EXPECT_TRUE(second->shakeHands());
    onQueue([&] {
        for (auto& each : connections) {
            for (std::uint64_t index = 0; index < 5; ++index) {
                each->send(series, index, "send", {});
            }
        }
    });
    for (Peer* peer : {first.get(), second.get()}) {
        for (std::uint64_t index = 0; index < 5; ++index) {
            ASSERT_TRUE(peer->nextText() == large(index)) << index;
        }
    }
    EXPECT_TRUE(runUntil([&] { return series->heldCount() == 0; })) << "the texts were let go";
}

TEST_P(NetworkContract, CancelAnswersEveryTextOfASeriesThatWaits) {
    listen();
    auto peer = dial();
    ASSERT_TRUE(runUntilNoted("preparing"));
    onQueue([&] {
        send(connection(), 0);
        send(connection(), 1);
        connection().cancel();
    });
    ASSERT_TRUE(runUntilNoted("cancelled"));
    EXPECT_THAT(notes.all(), ElementsAre("preparing", "not sent", "not sent", "cancelled"));
    EXPECT_TRUE(runUntil([&] { return series.use_count() == 1; })) << "the series was let go";
}

TEST_P(NetworkContract, ATextThatIsMadeTooLateReachesNobody) {
    series->isHeldBack = true;
    auto peer = connect();
    onQueue([&] {
        send(connection(), 0);
        connection().cancel();
    });
    ASSERT_TRUE(runUntilNoted("cancelled"));
    onQueue([&] { series->release(); });
    onQueue([] {});
    EXPECT_THAT(notes.all(), ElementsAre("preparing", "ready", "not sent", "cancelled"));
    EXPECT_TRUE(peer->seesEnd());
}

TEST_P(NetworkContract, ASeriesThatIsSentToAnEndedConnectionIsAnsweredWithAnError) {
    auto peer = connect();
    connection().cancel();
    ASSERT_TRUE(runUntilNoted("cancelled"));
    onQueue([&] {
        send(connection(), 0);
        notes.add("asked");
    });
    ASSERT_TRUE(runUntilNoted("not sent"));
    EXPECT_THAT(notes.all(), ElementsAre("preparing", "ready", "cancelled", "asked", "not sent"));
}

// The end.

TEST_P(NetworkContract, CancelBeforeTheStartReportsCancelledAlone) {
    startsAtOnce = false;
    listen();
    auto peer = dial();
    onQueue([&] { connection().cancel(); });
    ASSERT_TRUE(runUntilNoted("cancelled"));
    onQueue([&] { connection().start(world->queue()); });
    onQueue([] {});
    EXPECT_THAT(notes.all(), ElementsAre("cancelled"));
    EXPECT_TRUE(peer->seesEnd());
}

TEST_P(NetworkContract, CancelDuringTheHandshakeAnswersWhatWaitsAndThenReportsCancelled) {
    listen();
    auto peer = dial();
    ASSERT_TRUE(runUntilNoted("preparing"));
    onQueue([&] {
        receiveAll(connection());
        send(connection(), "text");
        connection().cancel();
    });
    ASSERT_TRUE(runUntilNoted("cancelled"));
    EXPECT_THAT(notes.all(), ElementsAre("preparing", "receive error", "not sent text", "cancelled"));
    EXPECT_TRUE(peer->seesEnd());
}

TEST_P(NetworkContract, CancelOfAReadyConnectionEndsTheReceiveAndIsReportedOnce) {
    whenReady = [this](NetworkConnection& connection) { receiveAll(connection); };
    auto peer = connect();
    connection().cancel();
    connection().cancel();
    ASSERT_TRUE(runUntilNoted("cancelled"));
    onQueue([] {});
    EXPECT_THAT(notes.all(), ElementsAre("preparing", "ready", "receive error", "cancelled"));
    EXPECT_TRUE(peer->seesEnd());
}

TEST_P(NetworkContract, WhenTheFarEndClosesTheReceiveFailsFirstAndThenTheConnection) {
    whenReady = [this](NetworkConnection& connection) { receiveAll(connection); };
    auto peer = connect();
    peer->closeProperly();
    ASSERT_TRUE(runUntilNoted("failed"));
    EXPECT_TRUE(hasErrorText);
    EXPECT_THAT(notes.all(), ElementsAre("preparing", "ready", "receive error", "failed"));
}

TEST_P(NetworkContract, WhenTheFarEndVanishesTheReceiveFailsFirstAndThenTheConnection) {
    whenReady = [this](NetworkConnection& connection) { receiveAll(connection); };
    auto peer = connect();
    peer->vanish();
    ASSERT_TRUE(runUntilNoted("failed"));
    EXPECT_TRUE(hasErrorText);
    EXPECT_THAT(notes.all(), ElementsAre("preparing", "ready", "receive error", "failed"));
}

TEST_P(NetworkContract, ACancelAfterTheFailureChangesNothing) {
    whenReady = [this](NetworkConnection& connection) { receiveAll(connection); };
    auto peer = connect();
    peer->vanish();
    ASSERT_TRUE(runUntilNoted("failed"));
    connection().cancel();
    onQueue([] {});
    onQueue([] {});
    EXPECT_FALSE(notes.have("cancelled"));
}

TEST_P(NetworkContract, WhatIsAskedOfAnEndedConnectionIsAnsweredWithErrors) {
    auto peer = connect();
    connection().cancel();
    ASSERT_TRUE(runUntilNoted("cancelled"));
    onQueue([&] {
        receiveAll(connection());
        send(connection(), "text");
        notes.add("asked");
    });
    ASSERT_TRUE(runUntilNoted("not sent text"));
    EXPECT_THAT(notes.all(),
                ElementsAre("preparing", "ready", "cancelled", "asked", "receive error", "not sent text"));
}

TEST_P(NetworkContract, AnEndedConnectionLetsGoOfItsHandlers) {
    auto peer = connect();
    std::weak_ptr<NetworkConnection> watch;
    onQueue([&] {
        watch = connections.front();
        connections.front()->cancel();
        connections.clear();
    });
    EXPECT_TRUE(runUntil([&] { return watch.expired(); }));
    EXPECT_TRUE(notes.have("cancelled"));
}

TEST_P(NetworkContract, AConnectionThatIsDroppedEndsWithoutACallback) {
    listen();
    auto peer = dial();
    EXPECT_TRUE(peer->shakeHands());
    ASSERT_TRUE(runUntilNoted("ready"));
    onQueue([&] {
        connection().receiveMessage([this](const ReceivedContent&) { notes.add("receive completed"); });
        connection().setStateHandler([this](ConnectionState, const auto&) { notes.add("state reported"); });
        connections.clear();
    });
    EXPECT_TRUE(peer->seesEnd());
    onQueue([] {});
    EXPECT_THAT(notes.all(), ElementsAre("preparing", "ready"));
}

INSTANTIATE_TEST_SUITE_P(, NetworkContract, testing::ValuesIn(networkImplementations()),
                         [](const auto& it) { return std::string(it.param.name); });

} // namespace
} // namespace velloway::test
