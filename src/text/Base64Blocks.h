#pragma once

#include "text/Base64Kernels.h"

#include <cstring>

/// The block-wise codec over any vector type. Its users are compiled for newer processors, so that all of it
/// has internal linkage and calls nothing of the standard library that could be shared with other files.
namespace velloway::base64 {

namespace {

/// Blocks that hold nothing but the alphabet, straight from text to bytes.
template <class Vector> void decodeClean(Decoding& decoding) {
    while (static_cast<std::size_t>(decoding.end - decoding.in) >= Vector::width) {
        typename Vector::Register values;
        if (!Vector::translate(Vector::load(decoding.in), values)) {
            return;
        }
        Vector::pack(values, decoding.out);
        decoding.in += Vector::width;
        decoding.out += Vector::width / 4 * 3;
    }
}

inline std::uint8_t* packGroup(const std::uint8_t* values, std::uint8_t* out) {
    out[0] = static_cast<std::uint8_t>(values[0] << 2 | values[1] >> 4);
    out[1] = static_cast<std::uint8_t>(values[1] << 4 | values[2] >> 2);
    out[2] = static_cast<std::uint8_t>(values[2] << 6 | values[3]);
    return out + 3;
}

/// Collects the values of the next blocks without their unknown bytes, then packs them. False if no block could
/// be taken.
template <class Vector> bool decodeStaged(Decoding& decoding) {
    constexpr std::size_t capacity = 2048;
    std::uint8_t values[capacity + Vector::width];
    std::size_t count = decoding.heldCount;
    std::memcpy(values, decoding.held, sizeof decoding.held);
    const std::uint8_t* const start = decoding.in;
    while (static_cast<std::size_t>(decoding.end - decoding.in) >= Vector::width &&
           count + Vector::width <= capacity) {
        const auto chars = Vector::load(decoding.in);
        typename Vector::Register translated;
        if (Vector::translate(chars, translated)) {
            Vector::store(translated, values + count);
            count += Vector::width;
        } else if (Vector::holdsPadding(chars)) {
            break;
        } else {
            count += Vector::storeKnown(chars, translated, values + count);
        }
        decoding.in += Vector::width;
    }

    std::size_t packed = 0;
    for (; count - packed >= Vector::width; packed += Vector::width) {
        Vector::pack(Vector::load(values + packed), decoding.out);
        decoding.out += Vector::width / 4 * 3;
    }
    for (; count - packed >= 4; packed += 4) {
        decoding.out = packGroup(values + packed, decoding.out);
    }
    decoding.heldCount = count - packed;
    std::memcpy(decoding.held, values + packed, sizeof decoding.held);
    return decoding.in != start;
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
