#pragma once

#include "base64/Base64Kernels.h"

#include <cstring>

/// The block-wise codec over any vector type. Its users are compiled for newer processors, so that all of it
/// has internal linkage and calls nothing of the standard library that could be shared with other files.
namespace velloway::base64 {

namespace {

// The loops walk with pointers of their own: bytes that are stored could be a part of `Decoding`.

/// Blocks that hold nothing but the alphabet, straight from text to bytes.
template <class Vector> void decodeClean(Decoding& decoding) {
    const std::uint8_t* in = decoding.in;
    std::uint8_t* out = decoding.out;
    typename Vector::Register values;
    while (static_cast<std::size_t>(decoding.end - in) >= Vector::width &&
           Vector::translate(Vector::load(in), values)) {
        Vector::pack(values, out);
        in += Vector::width;
        out += Vector::width / 4 * 3;
    }
    decoding.in = in;
    decoding.out = out;
}

inline std::uint8_t* packGroup(const std::uint8_t* values, std::uint8_t* out) {
    out[0] = static_cast<std::uint8_t>(values[0] << 2 | values[1] >> 4);
    out[1] = static_cast<std::uint8_t>(values[1] << 4 | values[2] >> 2);
    out[2] = static_cast<std::uint8_t>(values[2] << 6 | values[3]);
    return out + 3;
}

/// For vectors that cannot do it in one step. Mostly there is one unknown byte or none, and nobody can predict
/// which: both take the same steps.
template <class Vector> std::size_t copyKnownOfFew(const std::uint8_t* in, std::uint8_t* to) {
    const auto chars = Vector::load(in);
    const unsigned unknown = Vector::unknownMask(chars);
    if ((unknown & (unknown - 1)) != 0) {
        return Vector::storeKnown(chars, unknown, to);
    }
    Vector::store(chars, to);
    const int first = __builtin_ctzll(unknown | 1ULL << Vector::width);
    Vector::store(Vector::load(in + first + 1), to + first);
    return Vector::width - (unknown != 0);
}

/// Copies a block without its unknown bytes, and returns how many there are. Reads and writes up to a block and
/// a byte beyond.
template <class Vector> std::size_t copyKnown(const std::uint8_t* in, std::uint8_t* to) {
    if constexpr (requires { Vector::copyKnown(in, to); }) {
        return Vector::copyKnown(in, to);
    } else {
        return copyKnownOfFew<Vector>(in, to);
    }
}

/// Packs the text of known bytes alone; what makes no whole group is held back.
template <class Vector> void packKnown(const std::uint8_t* text, std::size_t count, Decoding& decoding) {
    std::uint8_t* out = decoding.out;
    typename Vector::Register values;
    for (; count >= Vector::width; count -= Vector::width) {
        Vector::translate(Vector::load(text), values);
        Vector::pack(values, out);
        text += Vector::width;
        out += Vector::width / 4 * 3;
    }
    std::uint8_t last[Vector::width];
    Vector::translate(Vector::load(text), values);
    Vector::store(values, last);
    std::size_t packed = 0;
    for (; count - packed >= 4; packed += 4) {
        out = packGroup(last + packed, out);
    }
    decoding.out = out;
    decoding.heldCount = count - packed;
    for (std::size_t index = 0; index < decoding.heldCount; ++index) {
        decoding.held[index] = last[packed + index];
    }
}

/// Copies the next blocks without their unknown bytes, then packs the copy. False if no block could be taken.
template <class Vector> bool decodeStaged(Decoding& decoding) {
    constexpr std::size_t capacity = 2048;
    std::uint8_t text[capacity + 3 * Vector::width] = {};
    std::memcpy(text, decoding.held, sizeof decoding.held);
    Vector::store(Vector::letters(Vector::load(text)), text);
    std::size_t count = decoding.heldCount;
    const std::uint8_t* in = decoding.in;
    const auto left = static_cast<std::size_t>(decoding.end - in);
    const std::uint8_t* const stop = in + (left < capacity ? left : capacity);
    while (static_cast<std::size_t>(stop - in) > 2 * Vector::width && !Vector::holdsPadding(Vector::load(in))) {
        count += copyKnown<Vector>(in, text + count);
        in += Vector::width;
    }
    const bool isAnyTaken = in != decoding.in;
    decoding.in = in;
    packKnown<Vector>(text, count, decoding);
    return isAnyTaken;
}

template <class Vector> void decodeBlocks(Decoding& decoding) {
    do {
        if (decoding.heldCount == 0) {
            decodeClean<Vector>(decoding);
        }
    } while (decodeStaged<Vector>(decoding));
}

template <class Vector> void encodeBlocks(Encoding& encoding) {
    while (static_cast<std::size_t>(encoding.end - encoding.in) >= Vector::bytesRead) {
        const auto values = Vector::spread(encoding.in);
        encoding.out = Vector::storeEscaped(Vector::letters(values), encoding.out);
        encoding.in += Vector::width / 4 * 3;
    }
}

template <class Vector> std::size_t countSlashesInBlocks(const std::uint8_t*& in, const std::uint8_t* end) {
    std::size_t count = 0;
    while (static_cast<std::size_t>(end - in) >= Vector::bytesRead) {
        count += Vector::countSlashes(Vector::spread(in));
        in += Vector::width / 4 * 3;
    }
    return count;
}

} // namespace

} // namespace velloway::base64
