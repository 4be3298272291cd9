#include "base64/Base64Blocks.h"

#include <immintrin.h>

namespace velloway::base64 {

namespace {

struct Avx2 {
    using Register = __m256i;
    static constexpr std::size_t width = 32;
    static constexpr std::size_t bytesRead = 28;

    static Register load(const std::uint8_t* from) {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from));
    }
    static void store(Register values, std::uint8_t* to) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to), values);
    }
    static __m128i loadHalf(const std::uint8_t* from) {
        return _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    }
    /// The same sixteen bytes in both lanes.
    static Register twice(__m128i lane) { return _mm256_broadcastsi128_si256(lane); }

    static Register highNibbles(Register chars) {
        return _mm256_and_si256(_mm256_srli_epi32(chars, 4), _mm256_set1_epi8(0x0f));
    }

    /// Not zero at each byte outside the alphabet: the classes of its two halves then share a bit.
    static Register unknown(Register chars) {
        const Register byLow = twice(_mm_setr_epi8(0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11,
                                                   0x13, 0x1A, 0x1B, 0x1B, 0x1B, 0x1A));
        const Register byHigh = twice(_mm_setr_epi8(0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08, 0x10, 0x10,
                                                    0x10, 0x10, 0x10, 0x10, 0x10, 0x10));
        const Register low = _mm256_shuffle_epi8(byLow, _mm256_and_si256(chars, _mm256_set1_epi8(0x0f)));
        return _mm256_and_si256(low, _mm256_shuffle_epi8(byHigh, highNibbles(chars)));
    }

    static unsigned unknownMask(Register chars) {
        const Register bad = _mm256_cmpgt_epi8(unknown(chars), _mm256_setzero_si256());
        return static_cast<unsigned>(_mm256_movemask_epi8(bad));
    }

    static bool translate(Register chars, Register& values) {
        const Register offsets = twice(_mm_setr_epi8(0, 16, 19, 4, -65, -65, -71, -71, 0, 0, 0, 0, 0, 0, 0, 0));
        const Register slash = _mm256_cmpeq_epi8(chars, _mm256_set1_epi8('/'));
        values =
            _mm256_add_epi8(chars, _mm256_shuffle_epi8(offsets, _mm256_add_epi8(slash, highNibbles(chars))));
        const Register bad = unknown(chars);
        return _mm256_testz_si256(bad, bad) != 0;
    }

    static bool holdsPadding(Register chars) {
        return _mm256_movemask_epi8(_mm256_cmpeq_epi8(chars, _mm256_set1_epi8('='))) != 0;
    }

    static std::size_t storeKnownQuarter(__m128i values, unsigned mask, std::uint8_t* to) {
        const __m128i moves = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(byteMoves.kept[mask]));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(to), _mm_shuffle_epi8(values, moves));
        return byteMoves.keptCount[mask];
    }
    static std::size_t storeKnown(Register chars, unsigned mask, std::uint8_t* to) {
        const __m128i low = _mm256_castsi256_si128(chars);
        const __m128i high = _mm256_extracti128_si256(chars, 1);
        std::size_t count = storeKnownQuarter(low, mask & 0xff, to);
        count += storeKnownQuarter(_mm_srli_si128(low, 8), mask >> 8 & 0xff, to + count);
        count += storeKnownQuarter(high, mask >> 16 & 0xff, to + count);
        return count + storeKnownQuarter(_mm_srli_si128(high, 8), mask >> 24, to + count);
    }

    static void pack(Register values, std::uint8_t* to) {
        const Register pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi32(0x01400140));
        const Register groups = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
        const Register order = twice(_mm_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1));
        const Register lanes = _mm256_shuffle_epi8(groups, order);
        store(_mm256_permutevar8x32_epi32(lanes, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, -1, -1)), to);
    }

    static Register spread(const std::uint8_t* from) {
        const Register order = twice(_mm_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10));
        const Register both =
            _mm256_inserti128_si256(_mm256_castsi128_si256(loadHalf(from)), loadHalf(from + 12), 1);
        const Register bytes = _mm256_shuffle_epi8(both, order);
        const Register even = _mm256_mulhi_epu16(_mm256_and_si256(bytes, _mm256_set1_epi32(0x0fc0fc00)),
                                                 _mm256_set1_epi32(0x04000040));
        const Register odd = _mm256_mullo_epi16(_mm256_and_si256(bytes, _mm256_set1_epi32(0x003f03f0)),
                                                _mm256_set1_epi32(0x01000010));
        return _mm256_or_si256(even, odd);
    }

    static Register letters(Register values) {
        const Register offsets =
            twice(_mm_setr_epi8('a' - 26, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52,
                                '0' - 52, '0' - 52, '0' - 52, '+' - 62, '/' - 63, 'A', 0, 0));
        const Register capital = _mm256_cmpgt_epi8(_mm256_set1_epi8(26), values);
        const Register range = _mm256_or_si256(_mm256_subs_epu8(values, _mm256_set1_epi8(51)),
                                               _mm256_and_si256(capital, _mm256_set1_epi8(13)));
        return _mm256_add_epi8(_mm256_shuffle_epi8(offsets, range), values);
    }

    static std::uint8_t* storePrefixed(__m128i eight, unsigned mask, std::uint8_t* to) {
        const __m128i moves = loadHalf(byteMoves.prefixed[mask]);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_shuffle_epi8(eight, moves));
        return to + 16 - byteMoves.keptCount[mask];
    }
    /// Without a question whether there is a slash at all: in two of five registers there is, and nobody can
    /// predict in which.
    static std::uint8_t* storeEscaped(Register text, std::uint8_t* to) {
        const Register slash = _mm256_cmpeq_epi8(text, _mm256_set1_epi8('/'));
        const unsigned mask = static_cast<unsigned>(_mm256_movemask_epi8(slash));
        const __m128i low = _mm256_castsi256_si128(text);
        const __m128i high = _mm256_extracti128_si256(text, 1);
        const __m128i backslashes = _mm_set1_epi8('\\');
        to = storePrefixed(_mm_unpacklo_epi64(low, backslashes), mask & 0xff, to);
        to = storePrefixed(_mm_unpackhi_epi64(low, backslashes), mask >> 8 & 0xff, to);
        to = storePrefixed(_mm_unpacklo_epi64(high, backslashes), mask >> 16 & 0xff, to);
        return storePrefixed(_mm_unpackhi_epi64(high, backslashes), mask >> 24, to);
    }

    static std::size_t countSlashes(Register values) {
        const Register slash = _mm256_cmpeq_epi8(values, _mm256_set1_epi8(63));
        return static_cast<std::size_t>(_mm_popcnt_u32(static_cast<unsigned>(_mm256_movemask_epi8(slash))));
    }
};

} // namespace

extern const Kernel avx2Kernel;
const Kernel avx2Kernel{"avx2", decodeBlocks<Avx2>, encodeBlocks<Avx2>, countSlashesInBlocks<Avx2>};

} // namespace velloway::base64
