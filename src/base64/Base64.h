#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// The codec of the file transfers. Vector code is chosen at run time; `scalar` is the reference.
namespace velloway::base64 {

/// Skips every character outside the alphabet and the padding sign. What is left must be whole groups of four,
/// of which only the last may end in one or two padding signs; anything else leaves nothing. Texts with nothing
/// to decode give an empty result.
std::optional<std::string> decode(std::string_view text);

/// The bytes of memory that `decodeInto` needs for a text of this length; more than it will ever fill.
constexpr std::size_t decodeRoom(std::size_t textSize) {
    return textSize / 4 * 3 + 64;
}

/// As `decode`, into memory of the caller; returns how many bytes came out. Of the room, all may be
/// overwritten.
std::optional<std::size_t> decodeInto(std::string_view text, char* room);

/// The exact number of bytes that `appendEncodedEscaped` writes at most.
constexpr std::size_t encodedEscapedBound(std::size_t byteCount) {
    return (byteCount + 2) / 3 * 8;
}

/// The number of bytes that `appendEncodedEscaped` writes for just these bytes. Reads all of them.
std::size_t encodedEscapedSize(std::string_view bytes);

/// Appends the base64 text of `bytes` to `out`, each slash as `\/` so that it can stand in a JSON string.
/// Reserves nothing: `out` grows as it needs.
void appendEncodedEscaped(std::string& out, std::string_view bytes);

namespace scalar {
std::optional<std::string> decode(std::string_view text);
void appendEncodedEscaped(std::string& out, std::string_view bytes);
} // namespace scalar

} // namespace velloway::base64
