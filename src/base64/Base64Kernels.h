#pragma once

#include <cstddef>
#include <cstdint>

/// How the codec is put together: a kernel does the bulk in whole blocks, the scalar code does what is left.
/// Included by files that are compiled for newer processors: nothing here may define a function.
namespace velloway::base64 {

/// How far the decoding of one text has come. At most three values of a group are held back.
struct Decoding {
    const std::uint8_t* in;
    const std::uint8_t* end;
    std::uint8_t* out;
    std::uint8_t held[4];
    std::size_t heldCount;
};

struct Encoding {
    const std::uint8_t* in;
    const std::uint8_t* end;
    std::uint8_t* out;
};

struct Kernel {
    const char* name;
    /// Goes on to the last whole block, or to the block that has the first padding sign. Writes up to 32 bytes
    /// beyond what it decoded.
    void (*decode)(Decoding& decoding);
    /// Takes whole groups of three bytes. Writes up to 32 bytes beyond what it encoded.
    void (*encode)(Encoding& encoding);
    /// Counts the slashes in the text of whole groups of three bytes, and moves `in` behind them.
    std::size_t (*countSlashes)(const std::uint8_t*& in, const std::uint8_t* end);
};

/// Which bytes of eight a mask selects, and where they go.
struct ByteMoves {
    /// The indices of the bytes whose bit is clear, in order.
    std::uint8_t kept[256][8];
    std::uint8_t keptCount[256];
    /// All eight indices, with a 8 before each whose bit is set.
    std::uint8_t prefixed[256][16];
};
extern const ByteMoves byteMoves;

/// What this processor can run: the fastest first, the scalar one last. `count` is never 0.
const Kernel* const* usableKernels(std::size_t& count);

extern const Kernel scalarKernel;

} // namespace velloway::base64
