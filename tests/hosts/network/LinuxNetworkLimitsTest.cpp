#include "fakes/FakeTextSeries.h"
#include "hosts/network/HostileFixture.h"

#include <boost/beast/websocket/error.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <string>
#include <vector>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

namespace velloway::test {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

constexpr int isContinuation = 0;
constexpr int isClose = 8;

std::string closeWith(int code) {
    return frame(std::string{static_cast<char>(code >> 8), static_cast<char>(code)}, {.opcode = isClose});
}

/// The numbers behind the limits, and the words in which the connections end.
class LinuxNetworkLimitsTest : public HostileFixture<testing::Test> {
protected:
    void serveAlone(const LinuxNetworkLimits& limits) {
        bystander.reset();
        host.reset();
        serve(limits);
    }
    /// What the connection that failed first says.
    std::string failure() {
        EXPECT_TRUE(waitUntil([&] { return host->failures == 1; }));
        return host->lastFailure();
    }
};

TEST_F(LinuxNetworkLimitsTest, TheAnswersToRequestsAreWhatTheyHaveBeen) {
    struct Case {
        std::string request;
        std::string answer;
    };
    const std::string refused = "Connection: close\r\nContent-Length: 0\r\n\r\n";
    const std::string upgrade =
        "HTTP/1.1 426 Upgrade Required\r\nUpgrade: websocket\r\nSec-WebSocket-Version: 13\r\n" + refused;
    const Case cases[] = {
        {"hello\r\n\r\n", "HTTP/1.1 400 Bad Request\r\n" + refused},
        {"GET / HTTP/1.1\r\nHost: x\r\n\r\n", upgrade},
        {"GET / HTTP/1.1\r\nHost: x\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n\r\n", upgrade},
        {RawPhone::request("Cookie: " + std::string(16 * 1024, 'c') + "\r\n"),
         "HTTP/1.1 431 Request Header Fields Too Large\r\n" + refused},
    };
    for (const Case& each : cases) {
        RawPhone phone(host->port);
        phone.write(each.request);
        EXPECT_EQ(phone.readHead(), each.answer);
    }
    RawPhone accepted(host->port);
    accepted.write(RawPhone::request());
    EXPECT_THAT(accepted.readHead(), HasSubstr("\r\nServer: Velloway\r\n"));
    accepted.reset();
    EXPECT_TRUE(waitUntil([&] { return host->open == 1; }));
}

TEST_F(LinuxNetworkLimitsTest, AKeyMayHoldEveryCharacterOfItsAlphabet) {
    for (const char* key : {"+/+/AAAAzzzz09azAZaAAA==", "AAAAAAAAAAAAAAAAAAAAAA=="}) {
        RawPhone phone(host->port);
        phone.write("GET / HTTP/1.1\r\nHost: x\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
                    "Sec-WebSocket-Version: 13\r\nSec-WebSocket-Key: " +
                    std::string(key) + "\r\n\r\n");
        EXPECT_THAT(phone.readHead(), HasSubstr("HTTP/1.1 101 ")) << key;
        expectServed(phone);
    }
    EXPECT_TRUE(waitUntil([&] { return host->open == 1; }));
}

TEST_F(LinuxNetworkLimitsTest, EveryEndSaysWhatItWas) {
    const auto failureAfter = [&](auto end) {
        host->failures = 0;
        RawPhone phone = connect();
        EXPECT_TRUE(waitUntil([&] { return host->open == 2; }));
        end(phone);
        return failure();
    };
    const auto sending = [](const std::string& bytes) {
        return [bytes](RawPhone& phone) { phone.write(bytes); };
    };
    using Problem = boost::beast::websocket::error;
    const auto words = [](Problem problem) { return make_error_code(problem).message(); };
    EXPECT_EQ(failureAfter(sending(closeWith(1000))), words(Problem::closed));
    EXPECT_EQ(failureAfter(sending(frame("\xFF"))), words(Problem::bad_frame_payload));
    EXPECT_EQ(failureAfter(sending(frame("x", {.claimedLength = ~std::uint64_t{0}}))),
              words(Problem::message_too_big));
    EXPECT_EQ(failureAfter(sending(frame("x", {.opcode = 3}))), words(Problem::bad_opcode));
    EXPECT_EQ(failureAfter([](RawPhone& phone) { phone.reset(); }), "Connection reset by peer");
    EXPECT_EQ(failureAfter([](RawPhone& phone) { phone.endSending(); }), "End of file");
}

TEST_F(LinuxNetworkLimitsTest, AHandshakeThatTakesTooLongTimesOut) {
    serveAlone({.handshake = 100ms});
    RawPhone silent(host->port);
    EXPECT_EQ(failure(), "Connection timed out");
}

TEST_F(LinuxNetworkLimitsTest, AnswersLeaveWithoutWaitingForOtherBytes) {
    RawPhone phone = connect();
    expectServed(phone);
    int served = 0;
    for (int descriptor = 3; descriptor < 300; ++descriptor) {
        sockaddr_in6 own{};
        sockaddr_in6 peer{};
        socklen_t ownSize = sizeof own;
        socklen_t peerSize = sizeof peer;
        if (getsockname(descriptor, reinterpret_cast<sockaddr*>(&own), &ownSize) != 0 ||
            own.sin6_family != AF_INET6 || ntohs(own.sin6_port) != host->port ||
            getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &peerSize) != 0) {
            continue;
        }
        int isSet = 0;
        socklen_t size = sizeof isSet;
        getsockopt(descriptor, IPPROTO_TCP, TCP_NODELAY, &isSet, &size);
        EXPECT_EQ(isSet, 1);
        ++served;
    }
    EXPECT_EQ(served, 2);
}

TEST_F(LinuxNetworkLimitsTest, AsManyBytesWaitForAPhoneAsAreAllowed) {
    constexpr int most = 10;
    serveAlone({.queuedBytes = most * (1000 + 128)});
    const auto text = std::make_shared<const std::string>(1000, 't');
    RawPhone phone = connect();
    EXPECT_TRUE(waitUntil([&] { return host->ready == 2; }));
    host->sendToLatest(text, most);
    EXPECT_TRUE(waitUntil([&] { return host->sent == most; }));
    host->sendToLatest(text, most + 1);
    EXPECT_EQ(failure(), "No buffer space available");
    EXPECT_EQ(host->sent + host->unsent, 2 * most + 1);
    // The first has left at once.
    EXPECT_GE(host->unsent, most);

    RawPhone other = connect();
    EXPECT_TRUE(waitUntil([&] { return host->ready == 3; }));
    host->sendToLatest(std::make_shared<const std::string>(100'000, 't'));
    EXPECT_EQ(other.nextText().size(), 100'000u);
    EXPECT_EQ(host->failures, 1);
}

TEST_F(LinuxNetworkLimitsTest, WhatFollowsTheTextThatFoundNoRoomIsRefusedToo) {
    serveAlone({.queuedBytes = 2000});
    auto series = std::make_shared<FakeTextSeries>(host->queue, [](auto) { return std::string("made"); });
    RawPhone phone = connect();
    EXPECT_TRUE(waitUntil([&] { return host->ready == 2; }));
    const auto small = std::make_shared<const std::string>("small");
    const auto large = std::make_shared<const std::string>(1900, 'l');
    const auto latest = host->latest();
    host->perform([&] {
        for (const auto& text : {small, large, small}) {
            latest->send(text, "send", [this](const auto& error) { ++(error ? host->unsent : host->sent); });
        }
        latest->send(series, 0, "send", [this](const auto& error) { ++(error ? host->unsent : host->sent); });
    });
    EXPECT_EQ(failure(), "No buffer space available");
    EXPECT_EQ(host->sent + host->unsent, 4);
    EXPECT_GE(host->unsent, 3);
    EXPECT_TRUE(phone.waitForEnd());
}

TEST_F(LinuxNetworkLimitsTest, ASecondCancelDoesNotCutWhatStillLeaves) {
    const auto series = std::make_shared<FakeTextSeries>(host->queue, [](std::uint64_t index) {
        return std::string(1'400'000, static_cast<char>('a' + index));
    });
    RawPhone phone(host->port);
    phone.setReceiveBuffer(65536);
    ASSERT_TRUE(phone.shakeHands());
    ASSERT_TRUE(waitUntil([&] { return host->ready == 2; }));
    host->sendToLatest(series, 20);
    const auto latest = host->latest();
    latest->cancel();
    latest->cancel();
    auto next = phone.readFrame();
    for (; next && next->opcode == 1; next = phone.readFrame()) {
        ASSERT_EQ(next->payload.size(), 1'400'000u);
    }
    ASSERT_TRUE(next);
    EXPECT_EQ(next->closeCode(), 1001);
    EXPECT_EQ(host->sent + host->unsent, 20);
    EXPECT_EQ(host->failures, 1);
}

TEST_F(LinuxNetworkLimitsTest, APortThatOnlyIpv6HasTakenIsTaken) {
    const int taken = socket(AF_INET6, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const int only = 1;
    sockaddr_in6 any{};
    any.sin6_family = AF_INET6;
    socklen_t size = sizeof any;
    if (taken < 0 || setsockopt(taken, IPPROTO_IPV6, IPV6_V6ONLY, &only, sizeof only) != 0 ||
        bind(taken, reinterpret_cast<sockaddr*>(&any), size) != 0 || listen(taken, 1) != 0) {
        close(taken);
        GTEST_SKIP() << "this system has no IPv6";
    }
    getsockname(taken, reinterpret_cast<sockaddr*>(&any), &size);
    AsioQueue queue("ws.server");
    LinuxNetwork network(queue, {});
    NetworkError error;
    const auto listener = network.makeListener(
        {.port = ntohs(any.sin6_port), .allowLocalEndpointReuse = true, .autoReplyPing = true}, error);
    std::promise<std::string> result;
    listener->setStateHandler([&](ListenerState state, const std::optional<NetworkError>& problem) {
        result.set_value(state == ListenerState::failed && problem ? problem->localizedDescription : "ready");
    });
    listener->start(queue);
    EXPECT_EQ(result.get_future().get(), "Address already in use");
    EXPECT_TRUE(queue.end(10s));
    close(taken);
}

TEST_F(LinuxNetworkLimitsTest, APhoneThatWaitsForADescriptorIsLetGoWithTheListener) {
    rlimit before{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit few{128, before.rlim_max};
    // The last quarter is spared.
    std::vector<int> taken;
    while (taken.empty() || taken.back() < 100) {
        taken.push_back(dup(0));
    }
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    RawPhone phone(host->port);
    phone.write(RawPhone::request());
    // Taken from the system, and not served.
    EXPECT_FALSE(phone.waitForEnd(300ms));
    EXPECT_EQ(host->accepted, 1);
    host->cancelListener();
    EXPECT_TRUE(phone.waitForEnd());
    setrlimit(RLIMIT_NOFILE, &before);
    std::for_each(taken.begin(), taken.end(), close);
    EXPECT_EQ(host->accepted, 1);
}

TEST_F(LinuxNetworkLimitsTest, OnlyOneVersionOfTheProtocolIsServed) {
    AsioQueue queue("ws.server");
    LinuxNetwork network(queue, {});
    NetworkError error;
    EXPECT_EQ(network.makeListener({.webSocketVersion = 12}, error), nullptr);
    EXPECT_EQ(error.localizedDescription, "Only WebSocket version 13 is supported");
    EXPECT_EQ(error.description, "unsupported WebSocket version 12");
    EXPECT_TRUE(network.acceptsPort(0));
}

/// What the server gets done before others get their turn.
class TurnTest : public testing::Test {
protected:
    void serve(std::atomic<int> EchoHost::*counter) {
        host.emplace(LinuxNetworkLimits{}, QueueTurns{.ended = [this, counter] {
                         if (counts) {
                             const int now = (*host).*counter;
                             most = std::max(most, now - before);
                             before = now;
                         }
                     }});
        host->answers = false;
    }

    std::atomic<bool> counts = false;
    int before = 0;
    int most = 0;
    std::optional<EchoHost> host;
};

TEST_F(TurnTest, NoMoreThan256SmallMessages) {
    serve(&EchoHost::messages);
    RawPhone phone(host->port);
    ASSERT_TRUE(phone.shakeHands());
    std::string flood;
    for (int index = 0; index < 5000; ++index) {
        flood += frame("x");
    }
    counts = true;
    ASSERT_TRUE(phone.write(flood));
    EXPECT_TRUE(waitUntil([&] { return host->messages == 5000; }));
    phone.reset();
    EXPECT_TRUE(host->queue.end(10s));
    EXPECT_EQ(most, 256);
}

TEST_F(TurnTest, NoMoreThan64NewConnections) {
    serve(&EchoHost::accepted);
    std::promise<void> goOn;
    std::promise<void> waits;
    host->queue.async([&] {
        waits.set_value();
        goOn.get_future().wait();
    });
    waits.get_future().wait();
    std::vector<RawPhone> phones;
    for (int index = 0; index < 200; ++index) {
        phones.emplace_back(host->port);
    }
    counts = true;
    goOn.set_value();
    EXPECT_TRUE(waitUntil([&] { return host->accepted == 200; }));
    for (RawPhone& phone : phones) {
        phone.reset();
    }
    EXPECT_TRUE(host->queue.end(10s));
    EXPECT_EQ(most, 64);
}

TEST_F(LinuxNetworkLimitsTest, AnEndedConnectionRefusesTextsSeriesAndReceivesInTheSameWords) {
    auto series = std::make_shared<FakeTextSeries>(host->queue, [](auto) { return std::string("made"); });
    RawPhone phone = connect();
    EXPECT_TRUE(waitUntil([&] { return host->ready == 2; }));
    const auto latest = host->latest();
    latest->cancel();
    EXPECT_EQ(phone.readFrame()->closeCode(), 1001);
    std::vector<std::string> errors;
    const auto note = [&](const auto& error) {
        errors.push_back(error ? error->localizedDescription : "sent");
    };
    host->perform([&] {
        latest->send(std::make_shared<const std::string>("late"), "send", note);
        latest->send(std::make_shared<const std::string>("late"), "send", {});
        latest->send(series, 0, "send", note);
        latest->receiveMessage([&](const ReceivedContent& content) { note(content.error); });
        EXPECT_TRUE(errors.empty()) << "nobody is called within the call";
    });
    host->perform([] {});
    EXPECT_EQ(errors, std::vector<std::string>(3, "Transport endpoint is not connected"));
    EXPECT_EQ(series.use_count(), 1);
}

TEST_F(LinuxNetworkLimitsTest, LargeAndSmallMessagesKeepTheirOrder) {
    RawPhone phone = connect();
    const std::string large(std::size_t{128} << 10, 'l');
    std::string bytes;
    for (const std::string& text :
         {std::string("one"), large, std::string("two"), large + "x", std::string("three")}) {
        bytes += frame(text);
    }
    ASSERT_TRUE(phone.write(bytes));
    EXPECT_EQ(phone.nextText(), "one");
    EXPECT_EQ(phone.nextText(), large);
    EXPECT_EQ(phone.nextText(), "two");
    EXPECT_EQ(phone.nextText(), large + "x");
    EXPECT_EQ(phone.nextText(), "three");
    ASSERT_TRUE(phone.write(frame(large, {.isFinal = false}) + frame("end", {.opcode = isContinuation})));
    EXPECT_EQ(phone.nextText(), large + "end");
}

} // namespace
} // namespace velloway::test
