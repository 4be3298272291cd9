#include "base64/Base64Blocks.h"

#include <arm_neon.h>

namespace velloway::base64 {

namespace {

struct Neon {
    using Register = uint8x16_t;
    static constexpr std::size_t width = 16;
    static constexpr std::size_t bytesRead = 16;

    static Register load(const std::uint8_t* from) { return vld1q_u8(from); }
    static void store(Register values, std::uint8_t* to) { vst1q_u8(to, values); }

    /// Not zero at each byte outside the alphabet: the classes of its two halves then share a bit.
    static Register unknown(Register chars) {
        static constexpr std::uint8_t byLow[16] = {0x15, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11,
                                                   0x11, 0x11, 0x13, 0x1A, 0x1B, 0x1B, 0x1B, 0x1A};
        static constexpr std::uint8_t byHigh[16] = {0x10, 0x10, 0x01, 0x02, 0x04, 0x08, 0x04, 0x08,
                                                    0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x10};
        const Register low = vqtbl1q_u8(vld1q_u8(byLow), vandq_u8(chars, vdupq_n_u8(0x0f)));
        return vandq_u8(low, vqtbl1q_u8(vld1q_u8(byHigh), vshrq_n_u8(chars, 4)));
    }

    /// One bit for each byte that is not zero.
    static unsigned bits(Register bytes) {
        static constexpr std::uint8_t weights[16] = {1, 2, 4, 8, 16, 32, 64, 128, 1, 2, 4, 8, 16, 32, 64, 128};
        const Register weighed = vandq_u8(vtstq_u8(bytes, bytes), vld1q_u8(weights));
        return static_cast<unsigned>(vaddv_u8(vget_low_u8(weighed))) |
               static_cast<unsigned>(vaddv_u8(vget_high_u8(weighed))) << 8;
    }

    static bool translate(Register chars, Register& values) {
        static constexpr std::uint8_t offsets[16] = {0, 16, 19, 4, 191, 191, 185, 185, 0, 0, 0, 0, 0, 0, 0, 0};
        const Register slash = vceqq_u8(chars, vdupq_n_u8('/'));
        const Register range = vaddq_u8(slash, vshrq_n_u8(chars, 4));
        values = vaddq_u8(chars, vqtbl1q_u8(vld1q_u8(offsets), range));
        return vmaxvq_u8(unknown(chars)) == 0;
    }

    static bool holdsPadding(Register chars) { return vmaxvq_u8(vceqq_u8(chars, vdupq_n_u8('='))) != 0; }

    static unsigned unknownMask(Register chars) { return bits(unknown(chars)); }

    static std::size_t storeKnown(Register chars, unsigned mask, std::uint8_t* to) {
        const unsigned low = mask & 0xff;
        const unsigned high = mask >> 8;
        vst1_u8(to, vtbl1_u8(vget_low_u8(chars), vld1_u8(byteMoves.kept[low])));
        const std::size_t first = byteMoves.keptCount[low];
        vst1_u8(to + first, vtbl1_u8(vget_high_u8(chars), vld1_u8(byteMoves.kept[high])));
        return first + byteMoves.keptCount[high];
    }

    static void pack(Register values, std::uint8_t* to) {
        static constexpr std::uint8_t order[16] = {2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, 255, 255, 255, 255};
        const uint32x4_t v = vreinterpretq_u32_u8(values);
        const uint32x4_t first = vshlq_n_u32(vandq_u32(v, vdupq_n_u32(0x3f)), 18);
        const uint32x4_t second = vshlq_n_u32(vandq_u32(v, vdupq_n_u32(0x3f00)), 4);
        const uint32x4_t third = vshrq_n_u32(vandq_u32(v, vdupq_n_u32(0x3f0000)), 10);
        const uint32x4_t groups = vorrq_u32(vorrq_u32(first, second), vorrq_u32(third, vshrq_n_u32(v, 24)));
        store(vqtbl1q_u8(vreinterpretq_u8_u32(groups), vld1q_u8(order)), to);
    }

    static Register spread(const std::uint8_t* from) {
        static constexpr std::uint8_t order[16] = {1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10};
        const uint32x4_t v = vreinterpretq_u32_u8(vqtbl1q_u8(load(from), vld1q_u8(order)));
        const uint32x4_t first = vandq_u32(vshrq_n_u32(v, 10), vdupq_n_u32(0x3f));
        const uint32x4_t second = vandq_u32(vshlq_n_u32(v, 4), vdupq_n_u32(0x3f00));
        const uint32x4_t third = vandq_u32(vshrq_n_u32(v, 6), vdupq_n_u32(0x3f0000));
        const uint32x4_t fourth = vandq_u32(vshlq_n_u32(v, 8), vdupq_n_u32(0x3f000000));
        return vreinterpretq_u8_u32(vorrq_u32(vorrq_u32(first, second), vorrq_u32(third, fourth)));
    }

    static Register letters(Register values) {
        static constexpr std::uint8_t alphabet[65] =
            "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        return vqtbl4q_u8(vld1q_u8_x4(alphabet), values);
    }

    static std::uint8_t* storePrefixed(uint8x8_t eight, unsigned mask, std::uint8_t* to) {
        const Register withBackslashes = vcombine_u8(eight, vdup_n_u8('\\'));
        store(vqtbl1q_u8(withBackslashes, vld1q_u8(byteMoves.prefixed[mask])), to);
        return to + 16 - byteMoves.keptCount[mask];
    }
    /// Without a question whether there is a slash at all: in every fourth register there is, and nobody can
    /// predict in which.
    static std::uint8_t* storeEscaped(Register text, std::uint8_t* to) {
        const Register slash = vceqq_u8(text, vdupq_n_u8('/'));
        const unsigned mask = bits(slash);
        to = storePrefixed(vget_low_u8(text), mask & 0xff, to);
        return storePrefixed(vget_high_u8(text), mask >> 8, to);
    }

    static std::size_t countSlashes(Register values) {
        return vaddvq_u8(vandq_u8(vceqq_u8(values, vdupq_n_u8(63)), vdupq_n_u8(1)));
    }
};

const Kernel neonKernel{"neon", decodeBlocks<Neon>, encodeBlocks<Neon>, countSlashesInBlocks<Neon>};

} // namespace

const Kernel* const* usableKernels(std::size_t& count) {
    static const Kernel* const kernels[] = {&neonKernel, &scalarKernel};
    count = 2;
    return kernels;
}

} // namespace velloway::base64
