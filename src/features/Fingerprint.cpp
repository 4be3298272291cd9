#include "features/Fingerprint.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <utility>

namespace velloway {

namespace {

/// The processor works on so many at the same time.
constexpr std::size_t laneCount = 8;
constexpr std::size_t blockSize = laneCount * sizeof(std::uint64_t);
constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15;

/// A product carries a change to higher bits only: the high half is laid over the low one before, and the
/// rotation brings the result to the others.
std::uint64_t mixed(std::uint64_t state, std::uint64_t word) {
    const std::uint64_t both = state ^ word;
    return std::rotl((both ^ both >> 32) * multiplier, 31);
}

using Lanes = std::array<std::uint64_t, laneCount>;

std::uint64_t wordAt(const char* place) {
    std::uint64_t word = 0;
    std::memcpy(&word, place, sizeof word);
    return word;
}

/// Without a loop, so that all lanes stay in registers.
template <std::size_t... lane> void takeBlock(Lanes& lanes, const char* block, std::index_sequence<lane...>) {
    ((lanes[lane] = mixed(lanes[lane], wordAt(block + lane * sizeof(std::uint64_t)))), ...);
}

void takeBlock(Lanes& lanes, const char* block) {
    takeBlock(lanes, block, std::make_index_sequence<laneCount>());
}

} // namespace

std::uint64_t fingerprint(std::string_view bytes) {
    std::uint64_t result = bytes.size();
    Lanes lanes{1, 2, 3, 4, 5, 6, 7, 8};
    for (; bytes.size() >= blockSize; bytes.remove_prefix(blockSize)) {
        takeBlock(lanes, bytes.data());
    }
    std::array<char, blockSize> last{};
    bytes.copy(last.data(), blockSize);
    takeBlock(lanes, last.data());
    for (const std::uint64_t lane : lanes) {
        result = mixed(result, lane);
    }
    return result ^ result >> 32;
}

} // namespace velloway
