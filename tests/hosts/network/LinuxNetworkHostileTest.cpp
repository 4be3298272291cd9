#include "hosts/network/HostileFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>

namespace velloway::test {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr int isContinuation = 0;
constexpr int isText = 1;
constexpr int isBinary = 2;
constexpr int isClose = 8;
constexpr int isPing = 9;
constexpr int isPong = 10;

std::string closeWith(int code, std::string_view reason = "") {
    std::string payload{static_cast<char>(code >> 8), static_cast<char>(code)};
    return frame(payload.append(reason), {.opcode = isClose});
}

// Frames that break the rules.

struct BadFrames {
    const char* what;
    std::string bytes;
    int closeCode;
};

void PrintTo(const BadFrames& bad, std::ostream* out) {
    *out << bad.what;
}

std::vector<BadFrames> reservedParts() {
    std::vector<BadFrames> all{
        {"the first reserved bit", frame("x", {.reservedBits = 4}), 1002},
        {"the second reserved bit", frame("x", {.reservedBits = 2}), 1002},
        {"the third reserved bit", frame("x", {.reservedBits = 1}), 1002},
        {"a reserved bit on a ping", frame("x", {.opcode = isPing, .reservedBits = 4}), 1002},
        {"a reserved bit on a continuation",
         frame("x", {.isFinal = false}) + frame("y", {.opcode = isContinuation, .reservedBits = 4}), 1002},
    };
    for (const int opcode : {3, 4, 5, 6, 7, 11, 12, 13, 14, 15}) {
        all.push_back({"a reserved opcode", frame("x", {.opcode = opcode}), 1002});
    }
    return all;
}

std::vector<BadFrames> badFraming() {
    constexpr std::uint64_t huge = std::uint64_t{1} << 62;
    return {
        {"an unmasked text", frame("x", {.isMasked = false}), 1002},
        {"an unmasked ping", frame("x", {.opcode = isPing, .isMasked = false}), 1002},
        {"an unmasked close", frame("\x03\xE8", {.opcode = isClose, .isMasked = false}), 1002},
        {"a ping in fragments", frame("x", {.opcode = isPing, .isFinal = false}), 1002},
        {"a close in fragments", frame("\x03\xE8", {.opcode = isClose, .isFinal = false}), 1002},
        {"a ping of 126 bytes", frame(std::string(126, 'x'), {.opcode = isPing}), 1002},
        {"a ping with eight bytes of length", frame("x", {.opcode = isPing, .lengthBytes = 8}), 1002},
        {"a close of 126 bytes", closeWith(1000, std::string(124, 'x')), 1002},
        {"a continuation of nothing", frame("x", {.opcode = isContinuation}), 1002},
        {"a new text inside a message", frame("x", {.isFinal = false}) + frame("y"), 1002},
        {"a binary inside a text", frame("x", {.isFinal = false}) + frame("y", {.opcode = isBinary}), 1002},
        {"two bytes of length where one is enough", frame("x", {.lengthBytes = 2}), 1002},
        {"eight bytes of length where one is enough", frame("x", {.lengthBytes = 8}), 1002},
        {"eight bytes of length where two are enough", frame(std::string(300, 'x'), {.lengthBytes = 8}), 1002},
        {"a claimed length of 2^62", frame("x", {.claimedLength = huge}), 1009},
        {"a claimed length of 2^63", frame("x", {.claimedLength = huge * 2}), 1009},
        {"a claimed length of 2^64 - 1", frame("x", {.claimedLength = ~std::uint64_t{0}}), 1009},
        {"a claimed length of 2^62 in binary", frame("x", {.opcode = isBinary, .claimedLength = huge}), 1009},
        {"a claimed length of 2^63 in a continuation",
         frame("x", {.isFinal = false}) + frame("x", {.opcode = isContinuation, .claimedLength = huge * 2}),
         1009},
    };
}

std::vector<BadFrames> badTexts() {
    const auto fragments = [](std::string_view first, std::string_view second) {
        return frame(first, {.isFinal = false}) + frame(second, {.opcode = isContinuation});
    };
    return {
        {"a byte that no text has", frame("a\xFFz"), 1007},
        {"an overlong slash", frame("\xC0\xAF"), 1007},
        {"a surrogate", frame("\xED\xA0\x80"), 1007},
        {"a character beyond the last", frame("\xF4\x90\x80\x80"), 1007},
        {"a lone continuation byte", frame("a\x80"), 1007},
        {"a character broken across fragments", fragments("a\xC3", "(z"), 1007},
        {"a text that ends inside a character", frame("abc\xE2\x82"), 1007},
        {"fragments that end inside a character", fragments("abc\xF0\x9F", "\x98"), 1007},
        {"an unfinished character and then an empty last fragment", fragments("abc\xE2\x82", ""), 1007},
        {"an unfinished start byte and then an empty last fragment", fragments("\xF0", ""), 1007},
        {"bad text deep inside a long one", frame(std::string(200'000, 'a') + "\xFE" + std::string(9, 'b')),
         1007},
    };
}

std::vector<BadFrames> badCloses() {
    std::vector<BadFrames> all{
        {"a close with one byte", frame("x", {.opcode = isClose}), 1002},
        {"a close whose reason is no text", closeWith(1000, "\xFF"), 1002},
    };
    for (const int code : {0, 999, 1004, 1005, 1006, 1015, 1016, 2999}) {
        all.push_back({"a close with a code that must not be sent", closeWith(code), 1002});
    }
    return all;
}

class BadFrameTest : public HostileFixture<testing::TestWithParam<BadFrames>> {};

TEST_P(BadFrameTest, ClosesWithTheRightCodeAndEndsTheConnection) {
    RawPhone phone = connect();
    phone.write(GetParam().bytes);
    const auto answer = phone.readFrame();
    ASSERT_TRUE(answer) << GetParam().what;
    EXPECT_EQ(answer->opcode, isClose);
    EXPECT_EQ(answer->closeCode(), GetParam().closeCode) << GetParam().what;
    EXPECT_TRUE(phone.waitForEnd());
    EXPECT_TRUE(waitUntil([&] { return host->failures == 1; }));
    EXPECT_EQ(host->receiveErrors, 1);
    EXPECT_FALSE(host->lastFailure().empty());
}

INSTANTIATE_TEST_SUITE_P(Reserved, BadFrameTest, testing::ValuesIn(reservedParts()));
INSTANTIATE_TEST_SUITE_P(Framing, BadFrameTest, testing::ValuesIn(badFraming()));
INSTANTIATE_TEST_SUITE_P(Text, BadFrameTest, testing::ValuesIn(badTexts()));
INSTANTIATE_TEST_SUITE_P(Close, BadFrameTest, testing::ValuesIn(badCloses()));

// Requests.

struct Request {
    const char* what;
    std::string bytes;
    std::string answer;
};

void PrintTo(const Request& request, std::ostream* out) {
    *out << request.what;
}

std::string requestWith(const std::string& version, const std::string& key,
                        const std::string& start = "GET / HTTP/1.1") {
    return start + "\r\nHost: x\r\nUpgrade: websocket\r\nConnection: keep-alive, Upgrade\r\n" + version + key +
           "\r\n";
}

std::string keyField(std::string_view key) {
    return "Sec-WebSocket-Key: " + std::string(key) + "\r\n";
}

std::vector<Request> refusedRequests() {
    const std::string version = "Sec-WebSocket-Version: 13\r\n";
    const std::string key = keyField(RawPhone::key);
    return {
        {"version 8", requestWith("Sec-WebSocket-Version: 8\r\n", key), "426"},
        {"version 14", requestWith("Sec-WebSocket-Version: 14\r\n", key), "426"},
        {"no version", requestWith("", key), "426"},
        {"no upgrade", "GET / HTTP/1.1\r\nHost: x\r\n\r\n", "426"},
        {"an upgrade to something else",
         "GET / HTTP/1.1\r\nHost: x\r\nUpgrade: h2c\r\nConnection: Upgrade\r\n" + version + key + "\r\n",
         "426"},
        {"no key", requestWith(version, ""), "400"},
        {"an empty key", requestWith(version, keyField("")), "400"},
        {"a key of 15 bytes", requestWith(version, keyField("MDEyMzQ1Njc4OWFiY2Rl")), "400"},
        {"a key of 17 bytes", requestWith(version, keyField("MDEyMzQ1Njc4OWFiY2RlZmc=")), "400"},
        {"a key that is no base64", requestWith(version, keyField("dGhlIHNhbXBsZSBub25j*Q==")), "400"},
        {"a key without its padding", requestWith(version, keyField("dGhlIHNhbXBsZSBub25jZQ")), "400"},
        {"a very long key", requestWith(version, keyField(std::string(3000, 'A'))), "400"},
        {"two keys", requestWith(version, key + key), "400"},
        {"another method", requestWith(version, key, "POST / HTTP/1.1"), "400"},
        {"an old protocol", requestWith(version, key, "GET / HTTP/1.0"), "400"},
        {"no host", "GET / HTTP/1.1\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n" + version + key + "\r\n",
         "400"},
        {"no HTTP at all", "hello\r\n\r\n", "400"},
        {"bytes of another protocol", "\x16\x03\x01\x02\x00\x01\x00\x01\xFC\x03\x03 \r\n\r\n"s, "400"},
        {"frames before the answer", RawPhone::request() + frame("early"), "400"},
        {"20 KB of fields", RawPhone::request("Cookie: " + std::string(20'000, 'c') + "\r\n"), "431"},
        {"a line without an end", "GET /" + std::string(100'000, 'a'), "431"},
        {"thousands of short fields", RawPhone::request([] {
             std::string fields;
             for (int index = 0; index < 3000; ++index) {
                 fields += "A: b\r\n";
             }
             return fields;
         }()),
         "431"},
    };
}

class RefusedRequestTest : public HostileFixture<testing::TestWithParam<Request>> {};

TEST_P(RefusedRequestTest, IsAnsweredWithItsStatusAndTheConnectionEnds) {
    RawPhone phone(host->port);
    phone.write(GetParam().bytes);
    const std::string head = phone.readHead();
    EXPECT_THAT(head, StartsWith("HTTP/1.1 " + GetParam().answer + " ")) << GetParam().what;
    if (GetParam().answer == "426") {
        EXPECT_THAT(head, HasSubstr("\r\nSec-WebSocket-Version: 13\r\n"));
    }
    EXPECT_TRUE(phone.waitForEnd());
    EXPECT_TRUE(waitUntil([&] { return host->failures == 1; }));
    EXPECT_EQ(host->ready, 1) << "only the bystander became ready";
}

INSTANTIATE_TEST_SUITE_P(, RefusedRequestTest, testing::ValuesIn(refusedRequests()));

class AcceptedRequestTest : public HostileFixture<testing::TestWithParam<Request>> {};

TEST_P(AcceptedRequestTest, BecomesAConnectionWithNoExtensionAndNoSubprotocol) {
    RawPhone phone(host->port);
    ASSERT_TRUE(phone.write(GetParam().bytes));
    const std::string head = phone.readHead();
    EXPECT_THAT(head, StartsWith("HTTP/1.1 101 ")) << GetParam().what;
    EXPECT_THAT(head, HasSubstr("s3pPLMBiTxaQ9kYGzzhZRbK+xOo="));
    EXPECT_THAT(head, Not(HasSubstr("Sec-WebSocket-Extensions")));
    EXPECT_THAT(head, Not(HasSubstr("Sec-WebSocket-Protocol")));
    expectServed(phone);
}

INSTANTIATE_TEST_SUITE_P(
    , AcceptedRequestTest,
    testing::Values(
        Request{"8 KB of fields", RawPhone::request("Cookie: " + std::string(8 * 1024, 'c') + "\r\n")},
        Request{"15 KB of fields", RawPhone::request("Cookie: " + std::string(15 * 1024, 'c') + "\r\n")},
        Request{"a foreign origin", RawPhone::request("Origin: http://elsewhere.example\r\n")},
        Request{"a subprotocol", RawPhone::request("Sec-WebSocket-Protocol: chat, superchat\r\n")},
        Request{"compression", RawPhone::request("Sec-WebSocket-Extensions: permessage-deflate\r\n")},
        Request{"a deep path", requestWith("Sec-WebSocket-Version: 13\r\n", keyField(RawPhone::key),
                                           "GET /some/where?a=b%20c HTTP/1.1")}));

// What a good client may do.

/// A limit on descriptors for the time that it exists.
class DescriptorLimit {
public:
    explicit DescriptorLimit(rlim_t count) {
        getrlimit(RLIMIT_NOFILE, &before_);
        const rlimit wanted{count, before_.rlim_max};
        isSet_ = setrlimit(RLIMIT_NOFILE, &wanted) == 0;
    }
    ~DescriptorLimit() { setrlimit(RLIMIT_NOFILE, &before_); }
    DescriptorLimit(const DescriptorLimit&) = delete;
    bool isSet() const { return isSet_; }
    rlim_t count() const {
        rlimit now{};
        getrlimit(RLIMIT_NOFILE, &now);
        return now.rlim_cur;
    }

private:
    rlimit before_{};
    bool isSet_ = false;
};

/// No descriptor can be had while it exists.
class DescriptorShortage {
public:
    DescriptorShortage() : limit_(256) {
        for (int taken = open("/dev/null", O_RDONLY | O_CLOEXEC); taken >= 0; taken = dup(taken_.front())) {
            taken_.push_back(taken);
        }
    }
    ~DescriptorShortage() {
        for (const int taken : taken_) {
            close(taken);
        }
    }

private:
    DescriptorLimit limit_;
    std::vector<int> taken_;
};

class LinuxNetworkTest : public HostileFixture<testing::Test> {
protected:
    void expectServedWithNewPhone() {
        RawPhone phone = connect();
        expectServed(phone);
    }

    std::chrono::microseconds processorTimeOfQueue() {
        rusage usage{};
        host->perform([&] { getrusage(RUSAGE_THREAD, &usage); });
        return std::chrono::seconds(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
               std::chrono::microseconds(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
    }
};

TEST_F(LinuxNetworkTest, AnswersAPingWithItsBytes) {
    RawPhone phone = connect();
    for (const std::string& payload : {""s, "ping"s, std::string(125, 'p')}) {
        phone.write(frame(payload, {.opcode = isPing}));
        const auto answer = phone.readFrame();
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->opcode, isPong);
        EXPECT_EQ(answer->payload, payload);
    }
    phone.write(frame("unasked", {.opcode = isPong}));
    expectServed(phone);
}

TEST_F(LinuxNetworkTest, JoinsFragmentsWithPingsBetweenThem) {
    RawPhone phone = connect();
    phone.write(frame("caf\xC3", {.isFinal = false}) + frame("now", {.opcode = isPing}) +
                frame("", {.opcode = isContinuation, .isFinal = false}) +
                frame("\xA9", {.opcode = isContinuation}));
    EXPECT_EQ(phone.readFrame()->opcode, isPong);
    EXPECT_EQ(phone.nextText(), "caf\xC3\xA9");
}

TEST_F(LinuxNetworkTest, AnEmptyLastFragmentEndsATextThatIsWhole) {
    RawPhone phone = connect();
    phone.write(frame("\xF0\x9F\x98\x80", {.isFinal = false}) + frame("", {.opcode = isContinuation}));
    EXPECT_EQ(phone.nextText(), "\xF0\x9F\x98\x80");
    expectServed(phone);
}

TEST_F(LinuxNetworkTest, ABinaryMessageMayHoldAnyBytes) {
    bystander.reset();
    host->answers = false;
    RawPhone phone = connect();
    const int before = host->messages;
    phone.write(frame("\xFF\x00\xC0"s, {.opcode = isBinary}));
    EXPECT_TRUE(waitUntil([&] { return host->messages > before; }));
    host->answers = true;
    bystander.emplace(host->port);
    expectServed(phone);
}

TEST_F(LinuxNetworkTest, AnswersACloseWithTheSameCodeEvenBeyondTheRangeInUse) {
    for (const int code : {1000, 1001, 1003, 1007, 1008, 1009, 1010, 1011, 3000, 4999, 5000, 65535}) {
        RawPhone phone = connect();
        phone.write(closeWith(code, "good-bye"));
        const auto answer = phone.readFrame();
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->opcode, isClose);
        EXPECT_EQ(answer->closeCode(), code);
        EXPECT_TRUE(phone.waitForEnd());
    }
}

TEST_F(LinuxNetworkTest, AMessageCanBeReadALittlePastItsEnd) {
    RawPhone phone = connect();
    bystander.reset();
    for (const std::size_t size : {1u, 125u, 1535u, 1536u, 65535u, 65536u, 131072u, 1'000'000u}) {
        const std::string text(size, 'm');
        ASSERT_TRUE(phone.sendText(text));
        ASSERT_EQ(phone.nextText(), text);
        EXPECT_GE(host->lastReadableAfter, 64u);
    }
    bystander.emplace(host->port);
}

TEST_F(LinuxNetworkTest, TakesConnectionsOverBothProtocolsAndNamesTheirHosts) {
    RawPhone four(host->port, "127.0.0.1");
    EXPECT_TRUE(four.shakeHands());
    expectServed(four);
    try {
        RawPhone six(host->port, "::1");
        EXPECT_TRUE(six.shakeHands());
        expectServed(six);
        EXPECT_EQ(host->descriptionOfLatest(), six.localDescription());
        EXPECT_EQ(host->hostOfLatest(), "::1");
    } catch (const std::system_error&) {
        GTEST_SKIP() << "this system has no IPv6";
    }
}

TEST_F(LinuxNetworkTest, ServesIpv4WhereThereIsNoIpv6) {
    bystander.reset();
    host.reset();
    serve({.usesIPv6 = false});
    RawPhone phone = connect();
    expectServed(phone);
    EXPECT_EQ(host->descriptionOfLatest(), phone.localDescription());
    EXPECT_EQ(host->hostOfLatest(), "127.0.0.1");
}

TEST_F(LinuxNetworkTest, ItsSocketsDoNotPassToStartedPrograms) {
    RawPhone phone = connect();
    int sockets = 0;
    for (int descriptor = 3; descriptor < 200; ++descriptor) {
        sockaddr_storage address{};
        socklen_t size = sizeof address;
        if (getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &size) == 0 &&
            address.ss_family != AF_UNIX) {
            ++sockets;
            EXPECT_TRUE(fcntl(descriptor, F_GETFD) & FD_CLOEXEC) << descriptor;
        }
    }
    EXPECT_EQ(sockets, 5) << "the listener's, and both ends of two connections";
}

// Slowness.

TEST_F(LinuxNetworkTest, AHandshakeThatDoesNotEndInTimeEndsTheConnection) {
    bystander.reset();
    host.reset();
    serve({.handshake = 400ms});
    RawPhone silent(host->port);
    RawPhone half(host->port);
    half.write("GET / HTTP/1.1\r\nHost: x\r\nUpg");
    RawPhone halfClosed(host->port);
    halfClosed.write("GET / HTTP/1.1\r\n");
    halfClosed.endSending();
    // One that sends a byte now and then, for ever.
    RawPhone slow(host->port);
    const std::string request = RawPhone::request();
    const auto start = std::chrono::steady_clock::now();
    std::size_t sent = 0;
    while (sent < request.size() && slow.write(request.substr(sent, 1))) {
        ++sent;
        std::this_thread::sleep_for(20ms);
    }
    EXPECT_LT(sent, request.size());
    EXPECT_LT(std::chrono::steady_clock::now() - start, 3s);
    EXPECT_TRUE(silent.waitForEnd());
    EXPECT_TRUE(half.waitForEnd());
    EXPECT_TRUE(halfClosed.waitForEnd());
    EXPECT_TRUE(waitUntil([&] { return host->failures == 4; }));
    // Those who are through the handshake are not timed.
    RawPhone quiet = connect();
    std::this_thread::sleep_for(600ms);
    expectServed(quiet);
}

TEST_F(LinuxNetworkTest, APhoneThatBreaksTheRulesAndThenStaysIsPutOut) {
    RawPhone phone = connect();
    phone.write(frame("x", {.opcode = 3}));
    EXPECT_EQ(phone.readFrame()->closeCode(), 1002);
    EXPECT_TRUE(waitUntil([&] { return host->failures == 1; }));
    // The phone leaves its side open; the server does not.
    EXPECT_TRUE(waitUntil([&] { return openDescriptors() <= descriptors + 1; }));
}

TEST_F(LinuxNetworkTest, APhoneThatNeverReadsIsEndedWhenTooMuchWaitsForIt) {
    bystander.reset();
    host.reset();
    serve({.queuedBytes = 16u << 20});
    RawPhone phone(host->port);
    phone.setReceiveBuffer(4096);
    ASSERT_TRUE(phone.shakeHands());
    ASSERT_TRUE(waitUntil([&] { return host->ready == 2; }));
    const auto text = std::make_shared<const std::string>(1u << 20, 't');
    host->sendToLatest(text, 12);
    EXPECT_EQ(host->failures, 0);
    EXPECT_EQ(host->unsent, 0);
    host->sendToLatest(text, 12);
    EXPECT_TRUE(waitUntil([&] { return host->failures == 1; }));
    EXPECT_EQ(host->lastFailure(), "No buffer space available");
    EXPECT_TRUE(waitUntil([&] { return host->sent + host->unsent == 24; })) << "every send is answered";
    EXPECT_GE(host->unsent, 8);
    EXPECT_TRUE(waitUntil([&] { return text.use_count() == 1; })) << "the texts were let go";
}

TEST_F(LinuxNetworkTest, PingsOfAPhoneThatNeverReadsPileUpOnItsOwnSide) {
    RawPhone phone = connect();
    phone.setReceiveBuffer(4096);
    const std::string ping = frame(std::string(125, 'p'), {.opcode = isPing});
    std::string pings;
    for (int index = 0; index < 8000; ++index) {
        pings += ping;
    }
    std::size_t written = 0;
    for (int round = 0; round < 40; ++round) {
        const std::size_t count = phone.writeWithoutWaiting(pings);
        written += count;
        if (count < pings.size()) {
            break;
        }
    }
    EXPECT_LT(written, 40 * pings.size()) << "the server stops reading";
    phone.reset();
}

// Size.

TEST_F(LinuxNetworkTest, AMessageAtTheBoundIsTakenAndOneBeyondItEndsTheConnection) {
    bystander.reset();
    host.reset();
    serve({.messageBytes = 1u << 20});
    RawPhone phone = connect();
    const std::string most(1u << 20, 'm');
    ASSERT_TRUE(phone.sendText(most));
    EXPECT_EQ(phone.nextText(), most);
    ASSERT_TRUE(phone.write(frame(most, {.isFinal = false}) + frame("", {.opcode = isContinuation})));
    EXPECT_EQ(phone.nextText(), most);
    phone.write(frame(most + "m"));
    EXPECT_EQ(phone.readFrame()->closeCode(), 1009);
    EXPECT_TRUE(phone.waitForEnd());
    RawPhone pieces = connect();
    pieces.write(frame(most, {.isFinal = false}) + frame("m", {.opcode = isContinuation}));
    EXPECT_EQ(pieces.readFrame()->closeCode(), 1009);
}

TEST_F(LinuxNetworkTest, AClaimedLengthTakesNoMemoryBeforeItsBytesCome) {
    std::vector<RawPhone> phones;
    const Memory before = Memory::now();
    for (int index = 0; index < 20; ++index) {
        phones.push_back(connect());
        phones.back().write(frame("few", {.claimedLength = 500u << 20}));
    }
    expectServedWithNewPhone();
    if (!VELLOWAY_MEMORY_IS_INSTRUMENTED) {
        EXPECT_LT(Memory::now().virtualSize - before.virtualSize, 64L << 20);
    }
}

TEST_F(LinuxNetworkTest, TheMemoryOfALargeMessageIsGivenBackWhileThePhoneStays) {
    bystander.reset();
    host->answers = false;
    RawPhone phone = connect();
    const int before = host->messages;
    {
        const std::string large = frame(std::string(100u << 20, 'l'), {.opcode = isBinary});
        ASSERT_TRUE(phone.write(large));
    }
    ASSERT_TRUE(waitUntil([&] { return host->messages > before; }));
    host->perform([] {});
    if (!VELLOWAY_MEMORY_IS_INSTRUMENTED) {
        EXPECT_LT(Memory::now().resident - memory.resident, memoryAllowance);
    }
    host->answers = true;
    bystander.emplace(host->port);
    expectServed(phone);
}

// Numbers.

TEST_F(LinuxNetworkTest, TenThousandConnectsInARowLeaveNothingBehind) {
    for (int index = 0; index < 10'000; ++index) {
        RawPhone phone(host->port);
        switch (index % 4) {
        case 0:
            break;
        case 1:
            phone.write("GET / HTTP");
            break;
        case 2:
            phone.write(RawPhone::request());
            break;
        default:
            ASSERT_TRUE(phone.shakeHands()) << index;
            break;
        }
        phone.reset();
    }
    EXPECT_TRUE(waitUntil([&] { return host->open == 1; }, 30s));
    expectServedWithNewPhone();
}

TEST_F(LinuxNetworkTest, AThousandIdlePhonesAreAllServed) {
    const DescriptorLimit limit(4096);
    if (!limit.isSet()) {
        GTEST_SKIP() << "this system allows fewer descriptors";
    }
    const Memory before = Memory::now();
    std::vector<RawPhone> phones;
    for (int index = 0; index < 1000; ++index) {
        phones.emplace_back(host->port);
        ASSERT_TRUE(phones.back().write(RawPhone::request()));
    }
    for (RawPhone& phone : phones) {
        ASSERT_THAT(phone.readHead(), StartsWith("HTTP/1.1 101 "));
    }
    ASSERT_TRUE(waitUntil([&] { return host->ready == 1001; }));
    if (!VELLOWAY_MEMORY_IS_INSTRUMENTED) {
        EXPECT_LT(Memory::now().resident - before.resident, 64L << 20) << "bytes for a thousand phones";
    }
    for (const int index : {0, 499, 999}) {
        expectServed(phones[static_cast<std::size_t>(index)]);
    }
    for (RawPhone& phone : phones) {
        phone.reset();
    }
    EXPECT_TRUE(waitUntil([&] { return host->open == 1; }));
}

TEST_F(LinuxNetworkTest, WithoutDescriptorsItWaitsWithoutSpinningAndThenGoesOn) {
    std::vector<RawPhone> phones(5);
    // A sanitizer needs a descriptor the first time that it looks at an object of some type.
    processorTimeOfQueue();
    {
        const DescriptorShortage shortage;
        for (RawPhone& phone : phones) {
            phone.connect(host->port);
            phone.write(RawPhone::request());
        }
        const auto before = processorTimeOfQueue();
        std::this_thread::sleep_for(500ms);
        EXPECT_LT(processorTimeOfQueue() - before, 150ms);
        EXPECT_EQ(host->accepted, 1) << "there was no descriptor for them";
    }
    for (RawPhone& phone : phones) {
        EXPECT_THAT(phone.readHead(), StartsWith("HTTP/1.1 101 "));
        expectServed(phone);
    }
}

TEST_F(LinuxNetworkTest, LeavesDescriptorsToTheRestOfTheProgram) {
    std::vector<RawPhone> phones(10);
    const int lowestFree = dup(0);
    close(lowestFree);
    constexpr int spare = LinuxNetworkLimits().spareDescriptors;
    const DescriptorLimit limit(static_cast<rlim_t>(std::max(lowestFree + 3 + spare, 4 * spare)));
    std::vector<int> taken;
    while (openDescriptors() < static_cast<int>(limit.count()) - spare - 3) {
        taken.push_back(dup(0));
    }
    for (RawPhone& phone : phones) {
        phone.connect(host->port);
        phone.write(RawPhone::request());
    }
    EXPECT_THAT(phones.front().readHead(), StartsWith("HTTP/1.1 101 "));
    const auto before = processorTimeOfQueue();
    std::this_thread::sleep_for(500ms);
    EXPECT_LT(processorTimeOfQueue() - before, 150ms);
    EXPECT_LT(host->accepted, 11) << "some must wait";
    std::vector<int> others(static_cast<std::size_t>(spare - 4));
    std::generate(others.begin(), others.end(), [] { return dup(0); });
    EXPECT_EQ(std::count(others.begin(), others.end(), -1), 0);
    for (const auto& some : {others, taken}) {
        std::for_each(some.begin(), some.end(), close);
    }
    expectServed(phones.front());
    for (RawPhone& phone : phones) {
        if (&phone != &phones.front()) {
            EXPECT_THAT(phone.readHead(), StartsWith("HTTP/1.1 101 "));
            expectServed(phone);
        }
        phone.reset();
    }
}

TEST(FairnessTest, AFloodOfFramesIsHandledABoundedAmountAtATime) {
    constexpr std::size_t frameBytes = std::size_t{20} << 10;
    constexpr int frameCount = 300;
    std::size_t before = 0;
    std::size_t mostInATurn = 0;
    std::optional<EchoHost> host;
    std::atomic<bool> counts = false;
    host.emplace(LinuxNetworkLimits{}, QueueTurns{.ended = [&] {
                     if (counts) {
                         mostInATurn = std::max(mostInATurn, host->receivedBytes - before);
                         before = host->receivedBytes;
                     }
                 }});
    host->answers = false;
    RawPhone phone(host->port);
    ASSERT_TRUE(phone.shakeHands());
    counts = true;
    const std::string bytes = frame(std::string(frameBytes, 'x'));
    std::string flood;
    for (int count = 0; count < frameCount; ++count) {
        flood += bytes;
    }
    ASSERT_TRUE(phone.write(flood));
    EXPECT_TRUE(waitUntil([&] { return host->messages == frameCount; }));
    phone.reset();
    host->queue.end(10s);
    EXPECT_GT(mostInATurn, 0u);
    EXPECT_LE(mostInATurn, (std::size_t{128} << 10) + frameBytes);
}

} // namespace
} // namespace velloway::test
