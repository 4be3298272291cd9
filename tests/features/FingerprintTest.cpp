#include "features/Fingerprint.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace velloway::test {

TEST(Fingerprint, IsTheSameForTheSameBytes) {
    const std::string bytes(1000, 'x');
    EXPECT_EQ(fingerprint(bytes), fingerprint(std::string(bytes)));
}

TEST(Fingerprint, DiffersByEveryBitAndByTheLength) {
    std::string bytes(200, '\0');
    std::set<std::uint64_t> seen{fingerprint(bytes)};
    std::size_t count = 1;
    for (std::size_t bit = 0; bit < bytes.size() * 8; ++bit, ++count) {
        bytes[bit / 8] = static_cast<char>(1 << bit % 8);
        seen.insert(fingerprint(bytes));
        bytes[bit / 8] = '\0';
    }
    for (std::size_t size = 0; size < bytes.size(); ++size, ++count) {
        seen.insert(fingerprint(std::string(size, '\0')));
    }
    EXPECT_EQ(seen.size(), count);
}

TEST(Fingerprint, DiffersWhenTheHighestBitsOfSeveralWordsAreFlipped) {
    std::string bytes(512, '\0');
    std::set<std::uint64_t> seen;
    for (int round = 0; round < 2; ++round) {
        for (std::size_t first = 7; first < bytes.size(); first += 8) {
            bytes[first] = static_cast<char>(bytes[first] ^ 0x80);
            seen.insert(fingerprint(bytes));
        }
    }
    EXPECT_EQ(seen.size(), bytes.size() / 8 * 2);
}

TEST(Fingerprint, DiffersWhenPiecesChangePlaces) {
    std::string bytes(256, 'a');
    std::set<std::uint64_t> seen;
    for (std::size_t at = 0; at < bytes.size(); at += 8) {
        bytes[at] = 'b';
        seen.insert(fingerprint(bytes));
        bytes[at] = 'a';
    }
    EXPECT_EQ(seen.size(), bytes.size() / 8);
}

} // namespace velloway::test
