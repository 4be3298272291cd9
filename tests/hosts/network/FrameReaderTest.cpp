#include "hosts/linux/network/FrameReader.h"
#include "hosts/linux/network/ReturnedBlocks.h"
#include "hosts/network/HostileFixture.h"
#include "hosts/network/RawPhone.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <malloc.h>

namespace velloway::test {
namespace {

using testing::ElementsAre;
using namespace std::string_literals;

constexpr std::size_t bound = std::size_t{1} << 20;

/// Reads bytes that come in pieces of a given size, and notes every event as one line of text.
class Reading {
public:
    explicit Reading(std::size_t maxMessageBytes = bound) : frames_(maxMessageBytes) {}

    Reading& take(std::string_view bytes, std::size_t piece = std::string_view::npos) {
        while (!bytes.empty() && !hasEnded_) {
            const auto place = frames_.prepare();
            if (place.empty()) {
                events.emplace_back("no place");
                return *this;
            }
            const std::size_t count = std::min({place.size(), bytes.size(), piece});
            std::memcpy(place.data(), bytes.data(), count);
            frames_.commit(count);
            bytes.remove_prefix(count);
            noteEvents();
        }
        return *this;
    }

    std::vector<std::string> events;

private:
    void noteEvents() {
        for (;;) {
            const FrameReader::Event event = frames_.next();
            switch (event.kind) {
            case FrameReader::Kind::incomplete:
                return;
            case FrameReader::Kind::message:
                events.push_back("message " + std::string(event.bytes));
                break;
            case FrameReader::Kind::ping:
                events.push_back("ping " + std::string(event.bytes));
                break;
            case FrameReader::Kind::close:
                events.push_back("close " + std::to_string(event.code) + " " + std::string(event.bytes));
                hasEnded_ = true;
                break;
            case FrameReader::Kind::failure:
                events.push_back("failure " + std::to_string(event.code));
                hasEnded_ = true;
                break;
            }
        }
    }

    FrameReader frames_;
    bool hasEnded_ = false;
};

std::string closeWith(int code, std::string_view reason = "") {
    std::string payload{static_cast<char>(code >> 8), static_cast<char>(code)};
    return frame(payload.append(reason), {.opcode = 8});
}

std::vector<std::string> eventsOf(std::string_view bytes) {
    return Reading().take(bytes).events;
}

TEST(FrameReaderTest, EveryOpcode) {
    const std::map<int, std::vector<std::string>> known{
        {1, {"message ab"}}, {2, {"message ab"}}, {8, {"close 24930 "}}, {9, {"ping ab"}}, {10, {}}};
    for (int opcode = 0; opcode < 16; ++opcode) {
        const auto found = known.find(opcode);
        const auto expected = found != known.end() ? found->second : std::vector<std::string>{"failure 1002"};
        EXPECT_EQ(eventsOf(frame("ab", {.opcode = opcode})), expected) << opcode;
    }
}

TEST(FrameReaderTest, EveryLengthAtWhichTheHeaderChangesInPiecesOfAnySize) {
    for (const std::size_t length : {0u, 1u, 125u, 126u, 127u, 65535u, 65536u, 200'000u}) {
        std::string text(length, ' ');
        for (std::size_t index = 0; index < length; ++index) {
            text[index] = static_cast<char>('a' + index % 26);
        }
        for (const std::size_t piece : {std::size_t{1}, std::size_t{7}, std::size_t{4096}, std::string::npos}) {
            const auto events = Reading().take(frame(text) + frame("next"), piece).events;
            ASSERT_EQ(events.size(), 2u) << length << " in pieces of " << piece;
            EXPECT_TRUE(events[0] == "message " + text) << length << " in pieces of " << piece;
            EXPECT_EQ(events[1], "message next");
        }
    }
}

TEST(FrameReaderTest, TheSameBytesSplitAtEveryPlaceGiveTheSameEvents) {
    const std::string bytes = frame("caf\xC3\xA9") + frame("one ", {.isFinal = false}) +
                              frame("ping", {.opcode = 9}) + frame("", {.opcode = 0, .isFinal = false}) +
                              frame("two \xF0\x9F", {.opcode = 0, .isFinal = false}) +
                              frame("", {.opcode = 10}) + frame("\x98\x80", {.opcode = 0}) +
                              frame(std::string(300, 'l'), {.opcode = 2}) + closeWith(1000, "bye");
    const auto whole = eventsOf(bytes);
    EXPECT_THAT(whole, ElementsAre("message caf\xC3\xA9", "ping ping", "message one two \xF0\x9F\x98\x80",
                                   "message " + std::string(300, 'l'), "close 1000 bye"));
    for (std::size_t split = 1; split < bytes.size(); ++split) {
        Reading reading;
        reading.take(std::string_view(bytes).substr(0, split)).take(std::string_view(bytes).substr(split));
        EXPECT_EQ(reading.events, whole) << "split at " << split;
    }
    for (std::size_t piece = 1; piece < 20; ++piece) {
        EXPECT_EQ(Reading().take(bytes, piece).events, whole) << "pieces of " << piece;
    }
}

TEST(FrameReaderTest, EveryReservedBitOnEveryKindOfFrame) {
    for (int bits = 1; bits < 8; ++bits) {
        for (const int opcode : {1, 2, 8, 9, 10}) {
            EXPECT_THAT(eventsOf(frame("ab", {.opcode = opcode, .reservedBits = bits})),
                        ElementsAre("failure 1002"));
        }
        EXPECT_THAT(eventsOf(frame("a", {.isFinal = false}) + frame("b", {.opcode = 0, .reservedBits = bits})),
                    ElementsAre("failure 1002"));
    }
}

TEST(FrameReaderTest, FramesWithoutAMask) {
    for (const int opcode : {1, 2, 8, 9, 10}) {
        EXPECT_THAT(eventsOf(frame("ab", {.opcode = opcode, .isMasked = false})), ElementsAre("failure 1002"));
    }
}

TEST(FrameReaderTest, ControlFramesThatAreTooLongOrInFragments) {
    for (const int opcode : {8, 9, 10}) {
        EXPECT_THAT(eventsOf(frame(std::string(126, 'x'), {.opcode = opcode})), ElementsAre("failure 1002"));
        EXPECT_THAT(eventsOf(frame("", {.opcode = opcode, .isFinal = false})), ElementsAre("failure 1002"));
    }
    EXPECT_THAT(eventsOf(frame(std::string(125, 'x'), {.opcode = 9})),
                ElementsAre("ping " + std::string(125, 'x')));
}

TEST(FrameReaderTest, FragmentsOutOfOrder) {
    EXPECT_THAT(eventsOf(frame("x", {.opcode = 0})), ElementsAre("failure 1002"));
    for (const int opcode : {1, 2}) {
        EXPECT_THAT(eventsOf(frame("x", {.isFinal = false}) + frame("y", {.opcode = opcode})),
                    ElementsAre("failure 1002"));
    }
    EXPECT_THAT(eventsOf(frame("x") + frame("y", {.opcode = 0})), ElementsAre("message x", "failure 1002"));
}

TEST(FrameReaderTest, ALengthInMoreBytesThanItNeeds) {
    EXPECT_THAT(eventsOf(frame(std::string(125, 'x'), {.lengthBytes = 2})), ElementsAre("failure 1002"));
    EXPECT_THAT(eventsOf(frame(std::string(65535, 'x'), {.lengthBytes = 8})), ElementsAre("failure 1002"));
}

TEST(FrameReaderTest, InvalidTextAtEveryPositionWithAnyPiece) {
    const std::vector<std::string> bad{
        "\xFF"s,         "\x80"s,         "\xC0\xAF"s,         "\xC1\xBF"s,
        "\xE0\x80\x80"s, "\xED\xA0\x80"s, "\xF0\x80\x80\x80"s, "\xF4\x90\x80\x80"s,
        "\xF5\x80"s,     "\xE2\x28"s};
    for (const std::string& wrong : bad) {
        for (std::size_t before = 0; before < 20; ++before) {
            const std::string text = std::string(before, 'a') + wrong + "rest";
            for (const std::size_t piece : {std::size_t{1}, std::size_t{3}, std::string::npos}) {
                EXPECT_THAT(Reading().take(frame(text), piece).events, ElementsAre("failure 1007"))
                    << testing::PrintToString(text) << " in pieces of " << piece;
            }
        }
    }
}

TEST(FrameReaderTest, ValidTextOfEveryLengthOfCharacterWithAnyPiece) {
    const std::string text = "a\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBF"
                             "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
    for (std::size_t piece = 1; piece < 12; ++piece) {
        EXPECT_THAT(Reading().take(frame(text), piece).events, ElementsAre("message " + text));
    }
    // Every character lies once across the edge at which the text is checked.
    for (std::size_t before = 16'360; before < 16'390; ++before) {
        const std::string all = std::string(before, 'a') + text;
        EXPECT_TRUE(Reading().take(frame(all)).events == std::vector<std::string>{"message " + all}) << before;
    }
}

TEST(FrameReaderTest, ATextThatBreaksOffInsideACharacter) {
    for (const std::string& open : {"\xC3"s, "\xE2\x82"s, "\xF0\x9F\x98"s}) {
        EXPECT_THAT(eventsOf(frame("abc" + open)), ElementsAre("failure 1007"));
        EXPECT_THAT(eventsOf(frame(open, {.isFinal = false}) + frame("", {.opcode = 0})),
                    ElementsAre("failure 1007"));
        EXPECT_THAT(eventsOf(frame("abc" + open, {.opcode = 2})), ElementsAre("message abc" + open));
    }
}

TEST(FrameReaderTest, InvalidTextIsNoticedBeforeTheMessageIsWhole) {
    EXPECT_THAT(eventsOf(frame("a\xED\xA0", {.isFinal = false})), ElementsAre("failure 1007"));
    EXPECT_THAT(eventsOf(frame("a\xF4\x90", {.claimedLength = 1000})), ElementsAre("failure 1007"));
}

TEST(FrameReaderTest, MessagesAtAndBeyondTheBound) {
    const auto events = [](const std::string& bytes) { return Reading(1000).take(bytes).events; };
    const std::string most(1000, 'm');
    EXPECT_THAT(events(frame(most)), ElementsAre("message " + most));
    EXPECT_THAT(events(frame(most + "m")), ElementsAre("failure 1009"));
    EXPECT_THAT(events(frame(most, {.isFinal = false}) + frame("", {.opcode = 0})),
                ElementsAre("message " + most));
    EXPECT_THAT(events(frame(most, {.isFinal = false}) + frame("m", {.opcode = 0})),
                ElementsAre("failure 1009"));
    for (const std::uint64_t claimed : {std::uint64_t{1} << 62, std::uint64_t{1} << 63, ~std::uint64_t{0}}) {
        EXPECT_THAT(events(frame("x", {.claimedLength = claimed})), ElementsAre("failure 1009"));
    }
}

TEST(FrameReaderTest, CloseCodes) {
    for (const int code : {1000, 1001, 1003, 1007, 1011, 1012, 1013, 3000, 4999, 65535}) {
        EXPECT_THAT(eventsOf(closeWith(code, "why")), ElementsAre("close " + std::to_string(code) + " why"));
    }
    for (const int code : {0, 999, 1004, 1005, 1006, 1014, 1015, 1016, 2999}) {
        EXPECT_THAT(eventsOf(closeWith(code)), ElementsAre("failure 1002")) << code;
    }
    EXPECT_THAT(eventsOf(frame("", {.opcode = 8})), ElementsAre("close 0 "));
    EXPECT_THAT(eventsOf(frame("x", {.opcode = 8})), ElementsAre("failure 1002"));
    EXPECT_THAT(eventsOf(closeWith(1000, "\xFF")), ElementsAre("failure 1002"));
}

TEST(FrameReaderTest, NothingIsReadAfterACloseOrAFailure) {
    EXPECT_THAT(eventsOf(closeWith(1000) + frame("late")), ElementsAre("close 1000 "));
    EXPECT_THAT(eventsOf(frame("x", {.opcode = 3}) + frame("late")), ElementsAre("failure 1002"));
}

TEST(FrameReaderTest, AMessageOfManyTinyFragmentsTakesNoMoreMemoryThanItsBytes) {
    // The headers alone are seven times as long as the message may be.
    std::string bytes = frame("a", {.isFinal = false});
    for (int index = 0; index < 100'000; ++index) {
        bytes += frame("a", {.opcode = 0, .isFinal = false});
    }
    bytes += frame("z", {.opcode = 0});
    const auto events = Reading(100'002).take(bytes).events;
    ASSERT_EQ(events.size(), 1u);
    EXPECT_TRUE(events[0] == "message " + std::string(100'001, 'a') + "z");
}

TEST(FrameReaderTest, BytesAfterAMessageMayBeRead) {
    FrameReader frames(bound);
    for (const std::size_t length : {1u, 125u, 65'523u, 70'000u, 1'000'000u}) {
        const std::string bytes = frame(std::string(length, 'm'));
        std::size_t written = 0;
        FrameReader::Event event;
        while (written < bytes.size()) {
            const auto place = frames.prepare();
            const std::size_t count = std::min(place.size(), bytes.size() - written);
            std::memcpy(place.data(), bytes.data() + written, count);
            frames.commit(count);
            written += count;
            event = frames.next();
        }
        ASSERT_EQ(event.kind, FrameReader::Kind::message);
        // The address sanitizer notices what is out of bounds.
        std::string after(ReceiveBuffer::readableAfter, ' ');
        std::memcpy(after.data(), event.bytes.data() + event.bytes.size(), after.size());
        EXPECT_EQ(event.bytes.size(), length);
    }
}

TEST(FrameReaderTest, AMessageThatIsKeptStaysWhereItIsWhateverComesAfterIt) {
    FrameReader frames(std::size_t{64} << 20);
    const auto give = [&](std::string_view bytes) {
        while (!bytes.empty()) {
            const auto place = frames.prepare();
            const std::size_t count = std::min(place.size(), bytes.size());
            std::memcpy(place.data(), bytes.data(), count);
            frames.commit(count);
            bytes.remove_prefix(count);
        }
    };
    const std::string first(50'000, 'a');
    const std::string second(3'000, 'b');
    const std::string third(40'000, 'c');
    const std::string after = frame(second) + frame(third);
    give(frame(first) + after.substr(0, 2'000));
    const auto event = frames.next();
    ASSERT_EQ(event.kind, FrameReader::Kind::message);
    const auto kept = frames.keepMessage();
    ASSERT_TRUE(kept);
    EXPECT_EQ(frames.next().kind, FrameReader::Kind::incomplete);
    give(std::string_view(after).substr(2'000));
    EXPECT_EQ(frames.next().bytes, second);
    EXPECT_EQ(frames.next().bytes, third);
    EXPECT_EQ(frames.next().kind, FrameReader::Kind::incomplete);
    frames.clear();
    EXPECT_EQ(event.bytes, first);
}

/// Reads large messages of one size that are kept for a while, as pieces of a file are.
class KeptMessages {
public:
    static constexpr std::size_t size = 3'000'000;

    std::string_view read(std::size_t bytes) {
        const std::string all = frame(std::string(bytes, 'k'));
        for (std::size_t written = 0; written < all.size();) {
            const auto place = frames.prepare();
            const std::size_t count = std::min(place.size(), all.size() - written);
            std::memcpy(place.data(), all.data() + written, count);
            frames.commit(count);
            written += count;
            if (const auto event = frames.next(); event.kind == FrameReader::Kind::message) {
                return event.bytes;
            }
        }
        return {};
    }
    std::shared_ptr<const void> keep() {
        read(size);
        return frames.keepMessage();
    }

    FrameReader frames{std::size_t{64} << 20};
};

TEST(FrameReaderTest, TheMemoryOfAKeptMessageServesAgainOnceItHasComeBack) {
    KeptMessages messages;
    auto first = messages.keep();
    const void* const place = first.get();
    first.reset();
    // Would be given that memory if it were free.
    const std::vector<char> other(KeptMessages::size);
    const auto second = messages.keep();
    const auto third = messages.keep();
    EXPECT_NE(second.get(), place);
    EXPECT_EQ(third.get(), place);
}

TEST(FrameReaderTest, TheMemoryThatHasComeBackIsFreedWhenOnlySmallMessagesCome) {
    if (VELLOWAY_MEMORY_IS_INSTRUMENTED) {
        GTEST_SKIP() << "what is free is not counted here";
    }
    const auto used = [] {
        const auto memory = mallinfo2();
        return memory.uordblks + memory.hblkhd;
    };
    KeptMessages messages;
    messages.keep();
    messages.read(10);
    const std::size_t before = used();
    for (int count = 0; count < 62; ++count) {
        messages.read(10);
    }
    EXPECT_GT(used() + 1'000'000, before) << "a phone may send pieces and other messages in turn";
    messages.read(10);
    messages.read(10);
    EXPECT_LT(used() + KeptMessages::size, before);
}

TEST(ReturnedBlocksTest, GivesOutWhatIsLargeEnoughAndKeepsTwo) {
    const auto block = [](std::size_t capacity) {
        return ReturnedBlocks::Block{static_cast<char*>(std::malloc(capacity)), capacity};
    };
    ReturnedBlocks blocks;
    EXPECT_EQ(blocks.take(0).memory, nullptr);
    const auto small = block(10);
    const auto large = block(20);
    blocks.put(small);
    blocks.put(large);
    // Freed at once, which the address sanitizer checks.
    blocks.put(block(30));
    EXPECT_EQ(blocks.take(21).memory, nullptr);
    const auto taken = blocks.take(11);
    EXPECT_EQ(taken.memory, large.memory);
    EXPECT_EQ(taken.capacity, 20u);
    blocks.put(taken);
    EXPECT_EQ(blocks.take(10).memory, small.memory);
    std::free(small.memory);
    blocks.freeAll();
    EXPECT_EQ(blocks.take(0).memory, nullptr);
}

TEST(FrameReaderTest, TakesALargeFrameInPiecesOfBoundedSize) {
    FrameReader frames(std::size_t{64} << 20);
    const std::string bytes = frame(std::string(std::size_t{8} << 20, 'x'));
    std::size_t written = 0;
    std::size_t pieces = 0;
    while (written < bytes.size()) {
        const auto place = frames.prepare();
        EXPECT_LE(place.size(), std::size_t{256} << 10);
        const std::size_t count = std::min(place.size(), bytes.size() - written);
        std::memcpy(place.data(), bytes.data() + written, count);
        frames.commit(count);
        written += count;
        ++pieces;
        const auto event = frames.next();
        EXPECT_EQ(event.bytes.size(), written < bytes.size() ? 0 : std::size_t{8} << 20);
    }
    EXPECT_LT(pieces, 100u);
}

TEST(FrameReaderTest, AStreamThatNeverPausesBetweenFramesAlwaysHasAPlace) {
    // Each read ends inside a frame.
    const std::string text(333, 't');
    std::string bytes;
    for (int index = 0; index < 10'000; ++index) {
        bytes += frame(text);
    }
    const auto events = Reading(1000).take(bytes).events;
    ASSERT_EQ(events.size(), 10'000u);
    EXPECT_EQ(std::count(events.begin(), events.end(), "message " + text), 10'000);
    // And where the frames are joined to messages.
    std::string fragments;
    for (int index = 0; index < 5'000; ++index) {
        fragments += frame(text, {.isFinal = false}) + frame(text, {.opcode = 0});
    }
    const auto joined = Reading(1000).take(fragments).events;
    ASSERT_EQ(joined.size(), 5'000u);
    EXPECT_EQ(std::count(joined.begin(), joined.end(), "message " + text + text), 5'000);
}

TEST(FrameReaderTest, TheNextFrameOfALargeOneBeginsAtTheStartOfTheBuffer) {
    FrameReader frames(std::size_t{64} << 20);
    EXPECT_EQ(frames.prepare().size(), std::size_t{64} << 10);
    constexpr std::size_t length = 200'000;
    const std::string bytes = frame(std::string(length, 'x'));
    std::size_t written = 0;
    std::vector<std::size_t> places;
    while (written < bytes.size()) {
        const auto place = frames.prepare();
        places.push_back(place.size());
        const std::size_t count = std::min(place.size(), bytes.size() - written);
        std::memcpy(place.data(), bytes.data() + written, count);
        frames.commit(count);
        written += count;
        frames.next();
    }
    // A first read, then what may double the buffer, then all of the rest or what one read takes at least.
    EXPECT_THAT(places, ElementsAre(65'536, 65'536, bytes.size() - 2 * 65'536));
    frames.prepare();
}

/// What the process has asked the allocator for.
std::size_t bytesInUse() {
    const auto statistics = mallinfo2();
    return statistics.uordblks + statistics.hblkhd;
}

TEST(FrameReaderTest, MemoryBeyondThatOfAFileChunkIsGivenBackAfterTheMessage) {
    struct Case {
        std::size_t length;
        bool isKept;
    };
    // Growing doubles the buffer.
    for (const auto& [length, isKept] : {Case{3'900'000, true}, {4'300'000, false}, {20'000'000, false}}) {
        const std::string bytes = frame(std::string(length, 'x'), {.opcode = 2});
        const std::size_t before = bytesInUse();
        FrameReader frames(std::size_t{64} << 20);
        std::size_t written = 0;
        while (written < bytes.size()) {
            const auto place = frames.prepare();
            const std::size_t count = std::min(place.size(), bytes.size() - written);
            std::memcpy(place.data(), bytes.data() + written, count);
            frames.commit(count);
            written += count;
            if (frames.next().kind == FrameReader::Kind::message) {
                EXPECT_GT(bytesInUse(), before + length);
            }
        }
        frames.prepare();
        EXPECT_EQ(bytesInUse() > before + 1'000'000, isKept) << length;
        frames.clear();
        EXPECT_LT(bytesInUse(), before + 10'000);
    }
}

TEST(FrameReaderTest, NothingIsReadOnceItIsCleared) {
    FrameReader frames(bound);
    const std::string bytes = frame("one") + frame("two");
    std::memcpy(frames.prepare().data(), bytes.data(), bytes.size());
    frames.commit(bytes.size());
    EXPECT_EQ(frames.next().bytes, "one");
    EXPECT_TRUE(frames.hasBytes());
    frames.clear();
    EXPECT_FALSE(frames.hasBytes());
    EXPECT_EQ(frames.next().kind, FrameReader::Kind::incomplete);
    std::memcpy(frames.prepare().data(), bytes.data(), bytes.size());
    frames.commit(bytes.size());
    EXPECT_EQ(frames.next().kind, FrameReader::Kind::incomplete);
}

TEST(FrameReaderTest, AKeptMessageMayBeFollowedByFragmentsOfTheNext) {
    FrameReader frames(bound);
    const std::string bytes = frame("one") + frame("tw", {.isFinal = false}) + frame("o", {.opcode = 0});
    for (const bool isKept : {false, true}) {
        std::memcpy(frames.prepare().data(), bytes.data(), bytes.size());
        frames.commit(bytes.size());
        const auto one = frames.next();
        ASSERT_EQ(one.bytes, "one");
        const auto kept = isKept ? frames.keepMessage() : nullptr;
        EXPECT_EQ(frames.next().bytes, "two");
        EXPECT_EQ(frames.next().kind, FrameReader::Kind::incomplete);
        if (isKept) {
            EXPECT_EQ(one.bytes, "one");
        }
    }
}

} // namespace
} // namespace velloway::test
