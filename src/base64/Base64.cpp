#include "base64/Base64.h"

#include "base64/Base64Kernels.h"
#include "base64/Base64With.h"

#include <algorithm>
#include <array>

namespace velloway::base64 {

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t paddingSign = 0xfe;
constexpr std::uint8_t unknownSign = 0xff;

constexpr auto valueOf = [] {
    std::array<std::uint8_t, 256> values{};
    values.fill(unknownSign);
    for (std::size_t i = 0; i < alphabet.size(); ++i) {
        values[static_cast<std::uint8_t>(alphabet[i])] = static_cast<std::uint8_t>(i);
    }
    values['='] = paddingSign;
    return values;
}();

constexpr ByteMoves makeByteMoves() {
    ByteMoves moves{};
    for (unsigned mask = 0; mask < 256; ++mask) {
        std::size_t kept = 0;
        std::size_t prefixed = 0;
        for (std::uint8_t i = 0; i < 8; ++i) {
            if ((mask >> i & 1) != 0) {
                moves.prefixed[mask][prefixed++] = 8;
            } else {
                moves.kept[mask][kept++] = i;
            }
            moves.prefixed[mask][prefixed++] = i;
        }
        moves.keptCount[mask] = static_cast<std::uint8_t>(kept);
    }
    return moves;
}

/// The four values of one group, or false if it is not made of the alphabet alone.
bool readGroup(const std::uint8_t* in, std::uint8_t* values) {
    std::uint8_t together = 0;
    for (int i = 0; i < 4; ++i) {
        values[i] = valueOf[in[i]];
        together |= values[i];
    }
    return together < 64;
}

void writeGroup(const std::uint8_t* values, std::uint8_t*& out) {
    *out++ = static_cast<std::uint8_t>(values[0] << 2 | values[1] >> 4);
    *out++ = static_cast<std::uint8_t>(values[1] << 4 | values[2] >> 2);
    *out++ = static_cast<std::uint8_t>(values[2] << 6 | values[3]);
}

/// Decodes all that is left, byte by byte where need be. False if the text as a whole is not base64.
bool finish(Decoding& decoding) {
    std::size_t padding = 0;
    while (decoding.in != decoding.end) {
        std::uint8_t group[4];
        while (decoding.heldCount == 0 && padding == 0 && decoding.end - decoding.in >= 4 &&
               readGroup(decoding.in, group)) {
            writeGroup(group, decoding.out);
            decoding.in += 4;
        }
        if (decoding.in == decoding.end) {
            break;
        }
        const std::uint8_t value = valueOf[*decoding.in++];
        if (value == unknownSign) {
            continue;
        }
        if (value == paddingSign) {
            ++padding;
            continue;
        }
        if (padding > 0) {
            return false;
        }
        decoding.held[decoding.heldCount++] = value;
        if (decoding.heldCount == 4) {
            writeGroup(decoding.held, decoding.out);
            decoding.heldCount = 0;
        }
    }

    if (decoding.heldCount == 0) {
        return padding == 0;
    }
    if (decoding.heldCount == 1 || decoding.heldCount + padding != 4) {
        return false;
    }
    std::fill(decoding.held + decoding.heldCount, decoding.held + 4, std::uint8_t{0});
    std::uint8_t* const start = decoding.out;
    writeGroup(decoding.held, decoding.out);
    decoding.out = start + decoding.heldCount - 1;
    return true;
}

std::size_t groupValues(const std::uint8_t* in, std::size_t byteCount, std::uint8_t* values) {
    const unsigned first = in[0];
    const unsigned second = byteCount > 1 ? in[1] : 0;
    const unsigned third = byteCount > 2 ? in[2] : 0;
    const unsigned bits = first << 16 | second << 8 | third;
    for (std::size_t i = 0; i < 4; ++i) {
        values[i] = static_cast<std::uint8_t>(bits >> (18 - 6 * i) & 63);
    }
    return byteCount + 1;
}

/// Encodes all that is left, padding included.
void finish(Encoding& encoding) {
    while (encoding.in != encoding.end) {
        const auto byteCount =
            static_cast<std::size_t>(std::min<std::ptrdiff_t>(3, encoding.end - encoding.in));
        std::uint8_t values[4];
        const std::size_t count = groupValues(encoding.in, byteCount, values);
        for (std::size_t i = 0; i < 4; ++i) {
            const char letter = i < count ? alphabet[values[i]] : '=';
            if (letter == '/') {
                *encoding.out++ = '\\';
            }
            *encoding.out++ = static_cast<std::uint8_t>(letter);
        }
        encoding.in += byteCount;
    }
}

const std::uint8_t* bytesOf(std::string_view text) {
    return reinterpret_cast<const std::uint8_t*>(text.data());
}

const Kernel& fastest() {
    static const Kernel& kernel = [&]() -> const Kernel& {
        std::size_t count = 0;
        return **usableKernels(count);
    }();
    return kernel;
}

std::optional<std::string> decodeToString(const Kernel& kernel, std::string_view text) {
    std::string out(decodeRoom(text.size()), '\0');
    const auto size = decodeWith(kernel, text, out.data());
    if (!size) {
        return std::nullopt;
    }
    out.resize(*size);
    return out;
}

} // namespace

constinit const ByteMoves byteMoves = makeByteMoves();

const Kernel scalarKernel{"scalar", [](Decoding&) {}, [](Encoding&) {},
                          [](const std::uint8_t*&, const std::uint8_t*) -> std::size_t { return 0; }};

std::optional<std::size_t> decodeWith(const Kernel& kernel, std::string_view text, char* room) {
    const std::uint8_t* const in = bytesOf(text);
    std::uint8_t* const out = reinterpret_cast<std::uint8_t*>(room);
    Decoding decoding{in, in + text.size(), out, {}, 0};
    kernel.decode(decoding);
    if (!finish(decoding)) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(decoding.out - out);
}

void appendEncodedEscapedWith(const Kernel& kernel, std::string& out, std::string_view bytes) {
    // Small enough to stay in the nearest cache on its way into `out`.
    constexpr std::size_t blockSize = std::size_t{3} * 1024;
    std::array<std::uint8_t, encodedEscapedBound(blockSize) + 32> block;
    for (std::size_t done = 0; done < bytes.size(); done += blockSize) {
        const std::string_view part = bytes.substr(done, blockSize);
        Encoding encoding{bytesOf(part), bytesOf(part) + part.size(), block.data()};
        kernel.encode(encoding);
        finish(encoding);
        out.append(reinterpret_cast<const char*>(block.data()),
                   static_cast<std::size_t>(encoding.out - block.data()));
    }
}

std::size_t encodedEscapedSizeWith(const Kernel& kernel, std::string_view bytes) {
    const std::uint8_t* in = bytesOf(bytes);
    const std::uint8_t* const end = in + bytes.size();
    std::size_t size = (bytes.size() + 2) / 3 * 4 + kernel.countSlashes(in, end);
    while (in != end) {
        const auto byteCount = static_cast<std::size_t>(std::min<std::ptrdiff_t>(3, end - in));
        std::uint8_t values[4];
        const std::size_t count = groupValues(in, byteCount, values);
        size += static_cast<std::size_t>(std::count(values, values + count, std::uint8_t{63}));
        in += byteCount;
    }
    return size;
}

std::optional<std::string> decode(std::string_view text) {
    return decodeToString(fastest(), text);
}

std::optional<std::size_t> decodeInto(std::string_view text, char* room) {
    return decodeWith(fastest(), text, room);
}

std::size_t encodedEscapedSize(std::string_view bytes) {
    return encodedEscapedSizeWith(fastest(), bytes);
}

void appendEncodedEscaped(std::string& out, std::string_view bytes) {
    appendEncodedEscapedWith(fastest(), out, bytes);
}

namespace scalar {

std::optional<std::string> decode(std::string_view text) {
    return decodeToString(scalarKernel, text);
}

void appendEncodedEscaped(std::string& out, std::string_view bytes) {
    appendEncodedEscapedWith(scalarKernel, out, bytes);
}

} // namespace scalar

} // namespace velloway::base64
