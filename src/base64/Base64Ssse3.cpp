#include "base64/Base64Blocks.h"

#include <tmmintrin.h>

namespace velloway::base64 {

namespace {

struct Ssse3 {
    using Register = __m128i;
    static constexpr std::size_t width = 16;
    static constexpr std::size_t bytesRead = 16;

    static Register load(const std::uint8_t* from) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    }
    static void store(Register values, std::uint8_t* to) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), values);
    }

    static Register highNibbles(Register chars) {
        return _mm_and_si128(_mm_srli_epi32(chars, 4), _mm_set1_epi8(0x0f));
    }

    /// Not zero at each byte outside the alphabet: the classes of its two halves then share a bit.
    static Register unknown(Register chars) {
        const Register byLow = _mm_setr_epi8(0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x13,
                                             0x1A, 0x1B, 0x1B, 0x1B, 0x1A);
        const Register byHigh = _mm_setr_epi8(0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08, 0x10, 0x10, 0x10,
                                              0x10, 0x10, 0x10, 0x10, 0x10);
        const Register low = _mm_shuffle_epi8(byLow, _mm_and_si128(chars, _mm_set1_epi8(0x0f)));
        return _mm_and_si128(low, _mm_shuffle_epi8(byHigh, highNibbles(chars)));
    }

    static unsigned unknownMask(Register chars) {
        const Register bad = _mm_cmpgt_epi8(unknown(chars), _mm_setzero_si128());
        return static_cast<unsigned>(_mm_movemask_epi8(bad));
    }

    static bool translate(Register chars, Register& values) {
        const Register offsets = _mm_setr_epi8(0, 16, 19, 4, -65, -65, -71, -71, 0, 0, 0, 0, 0, 0, 0, 0);
        const Register slash = _mm_cmpeq_epi8(chars, _mm_set1_epi8('/'));
        values = _mm_add_epi8(chars, _mm_shuffle_epi8(offsets, _mm_add_epi8(slash, highNibbles(chars))));
        return unknownMask(chars) == 0;
    }

    static bool holdsPadding(Register chars) {
        return _mm_movemask_epi8(_mm_cmpeq_epi8(chars, _mm_set1_epi8('='))) != 0;
    }

    static std::size_t storeKnownHalf(Register values, unsigned mask, std::uint8_t* to) {
        const Register moves = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(byteMoves.kept[mask]));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_shuffle_epi8(values, moves));
        return byteMoves.keptCount[mask];
    }
    static std::size_t storeKnown(Register chars, unsigned mask, std::uint8_t* to) {
        const std::size_t first = storeKnownHalf(chars, mask & 0xff, to);
        return first + storeKnownHalf(_mm_srli_si128(chars, 8), mask >> 8, to + first);
    }

    static void pack(Register values, std::uint8_t* to) {
        const Register pairs = _mm_maddubs_epi16(values, _mm_set1_epi32(0x01400140));
        const Register groups = _mm_madd_epi16(pairs, _mm_set1_epi32(0x00011000));
        const Register order = _mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
        store(_mm_shuffle_epi8(groups, order), to);
    }

    static Register spread(const std::uint8_t* from) {
        const Register order = _mm_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10);
        const Register bytes = _mm_shuffle_epi8(load(from), order);
        const Register even =
            _mm_mulhi_epu16(_mm_and_si128(bytes, _mm_set1_epi32(0x0fc0fc00)), _mm_set1_epi32(0x04000040));
        const Register odd =
            _mm_mullo_epi16(_mm_and_si128(bytes, _mm_set1_epi32(0x003f03f0)), _mm_set1_epi32(0x01000010));
        return _mm_or_si128(even, odd);
    }

    static Register letters(Register values) {
        const Register offsets =
            _mm_setr_epi8('a' - 26, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52,
                          '0' - 52, '0' - 52, '0' - 52, '+' - 62, '/' - 63, 'A', 0, 0);
        const Register capital = _mm_cmpgt_epi8(_mm_set1_epi8(26), values);
        const Register range =
            _mm_or_si128(_mm_subs_epu8(values, _mm_set1_epi8(51)), _mm_and_si128(capital, _mm_set1_epi8(13)));
        return _mm_add_epi8(_mm_shuffle_epi8(offsets, range), values);
    }

    static std::uint8_t* storePrefixed(Register eight, unsigned mask, std::uint8_t* to) {
        store(_mm_shuffle_epi8(eight, load(byteMoves.prefixed[mask])), to);
        return to + 16 - byteMoves.keptCount[mask];
    }
    /// Without a question whether there is a slash at all: in every fourth register there is, and nobody can
    /// predict in which.
    static std::uint8_t* storeEscaped(Register text, std::uint8_t* to) {
        const Register slash = _mm_cmpeq_epi8(text, _mm_set1_epi8('/'));
        const unsigned mask = static_cast<unsigned>(_mm_movemask_epi8(slash));
        const Register backslashes = _mm_set1_epi8('\\');
        to = storePrefixed(_mm_unpacklo_epi64(text, backslashes), mask & 0xff, to);
        return storePrefixed(_mm_unpackhi_epi64(text, backslashes), mask >> 8, to);
    }

    static std::size_t countSlashes(Register values) {
        const Register ones = _mm_and_si128(_mm_cmpeq_epi8(values, _mm_set1_epi8(63)), _mm_set1_epi8(1));
        const Register sums = _mm_sad_epu8(ones, _mm_setzero_si128());
        return static_cast<std::size_t>(_mm_cvtsi128_si64(sums) + _mm_cvtsi128_si64(_mm_srli_si128(sums, 8)));
    }
};

} // namespace

extern const Kernel ssse3Kernel;
const Kernel ssse3Kernel{"ssse3", decodeBlocks<Ssse3>, encodeBlocks<Ssse3>, countSlashesInBlocks<Ssse3>};

} // namespace velloway::base64
