#include "base64/Base64Blocks.h"

// The intrinsics of GCC 12 read variables of theirs that nobody has set.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wuninitialized"
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif

#include <immintrin.h>

namespace velloway::base64 {

namespace {

/// What stands in the tables for all characters but those of the alphabet: the highest bit is set.
constexpr std::int8_t no = -1;
/// What a character of the alphabet stands for.
alignas(64) constexpr std::int8_t valuesOfLow[64] = {
    no, no, no, no, no, no, no, no, no, no, no, no, no, no, no, no, no, no, no, no, no, no,
    no, no, no, no, no, no, no, no, no, no, no, no, no, no, no, no, no, no, no, no, no, 62,
    no, no, no, 63, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, no, no, no, no, no, no};
alignas(64) constexpr std::int8_t valuesOfHigh[64] = {
    no, 0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20,
    21, 22, 23, 24, 25, no, no, no, no, no, no, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36,
    37, 38, 39, 40, 41, 42, 43, 44, 45, 46, 47, 48, 49, 50, 51, no, no, no, no, no};
alignas(64) constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
/// The three bytes of each 32-bit lane, most significant first.
alignas(64) constexpr std::int8_t packedOrder[64] = {
    2,  1,  0,  6,  5,  4,  10, 9,  8,  14, 13, 12, 18, 17, 16, 22, 21, 20, 26, 25, 24, 30, 29, 28,
    34, 33, 32, 38, 37, 36, 42, 41, 40, 46, 45, 44, 50, 49, 48, 54, 53, 52, 58, 57, 56, 62, 61, 60};
/// Three bytes for each 32-bit lane, the middle one twice.
alignas(64) constexpr std::int8_t spreadOrder[64] = {
    1,  0,  2,  1,  4,  3,  5,  4,  7,  6,  8,  7,  10, 9,  11, 10, 13, 12, 14, 13, 16, 15,
    17, 16, 19, 18, 20, 19, 22, 21, 23, 22, 25, 24, 26, 25, 28, 27, 29, 28, 31, 30, 32, 31,
    34, 33, 35, 34, 37, 36, 38, 37, 40, 39, 41, 40, 43, 42, 44, 43, 46, 45, 47, 46};

struct Avx512 {
    using Register = __m512i;
    static constexpr std::size_t width = 64;
    static constexpr std::size_t bytesRead = 48;

    static Register load(const void* from) { return _mm512_loadu_si512(from); }
    static void store(Register values, std::uint8_t* to) { _mm512_storeu_si512(to, values); }

    static Register lookUp(Register chars) {
        return _mm512_permutex2var_epi8(load(valuesOfLow), chars, load(valuesOfHigh));
    }
    /// The highest bit of a character beyond ASCII counts as well: the lookup leaves it out.
    static std::uint64_t unknownMask(Register chars) {
        return _mm512_movepi8_mask(_mm512_or_si512(lookUp(chars), chars));
    }
    static bool translate(Register chars, Register& values) {
        values = lookUp(chars);
        return _mm512_movepi8_mask(_mm512_or_si512(values, chars)) == 0;
    }
    static bool holdsPadding(Register chars) {
        return _mm512_cmpeq_epi8_mask(chars, _mm512_set1_epi8('=')) != 0;
    }
    /// In a register first: compressing straight into memory is many times slower on some processors.
    static std::size_t copyKnown(const std::uint8_t* in, std::uint8_t* to) {
        const Register chars = load(in);
        const std::uint64_t unknown = unknownMask(chars);
        store(_mm512_maskz_compress_epi8(~unknown, chars), to);
        return width - static_cast<std::size_t>(__builtin_popcountll(unknown));
    }

    static void pack(Register values, std::uint8_t* to) {
        const Register pairs = _mm512_maddubs_epi16(values, _mm512_set1_epi32(0x01400140));
        const Register groups = _mm512_madd_epi16(pairs, _mm512_set1_epi32(0x00011000));
        store(_mm512_permutexvar_epi8(load(packedOrder), groups), to);
    }

    static Register spread(const std::uint8_t* from) {
        const Register bytes = _mm512_maskz_loadu_epi8((1ULL << bytesRead) - 1, from);
        const Register lanes = _mm512_permutexvar_epi8(load(spreadOrder), bytes);
        const Register shifts = _mm512_set1_epi64(0x3036242a1016040a);
        return _mm512_and_si512(_mm512_multishift_epi64_epi8(shifts, lanes), _mm512_set1_epi8(63));
    }
    static Register letters(Register values) { return _mm512_permutexvar_epi8(values, load(alphabet)); }

    /// Half of the text with a backslash before each letter, of which those before a slash are kept.
    static std::uint8_t* storePrefixed(__m256i half, std::uint32_t slashes, std::uint8_t* to) {
        const Register wide = _mm512_slli_epi16(_mm512_cvtepu8_epi16(half), 8);
        const Register pairs = _mm512_or_si512(wide, _mm512_set1_epi16('\\'));
        const std::uint64_t kept = _pdep_u64(slashes, 0x5555555555555555) | 0xaaaaaaaaaaaaaaaa;
        store(_mm512_maskz_compress_epi8(kept, pairs), to);
        return to + __builtin_popcountll(kept);
    }
    static std::uint8_t* storeEscaped(Register text, std::uint8_t* to) {
        const std::uint64_t slashes = _mm512_cmpeq_epi8_mask(text, _mm512_set1_epi8('/'));
        to = storePrefixed(_mm512_castsi512_si256(text), static_cast<std::uint32_t>(slashes), to);
        return storePrefixed(_mm512_extracti64x4_epi64(text, 1), static_cast<std::uint32_t>(slashes >> 32), to);
    }

    static std::size_t countSlashes(Register values) {
        const std::uint64_t slashes = _mm512_cmpeq_epi8_mask(values, _mm512_set1_epi8(63));
        return static_cast<std::size_t>(__builtin_popcountll(slashes));
    }
};

} // namespace

extern const Kernel avx512Kernel;
const Kernel avx512Kernel{"avx512", decodeBlocks<Avx512>, encodeBlocks<Avx512>, countSlashesInBlocks<Avx512>};

} // namespace velloway::base64
