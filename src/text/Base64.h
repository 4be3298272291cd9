#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// The codec of the file transfers. Vector code is chosen at run time; `scalar` is the reference.
namespace velloway::base64 {

/// Skips every character outside the alphabet. The length of what is left must fit base64: padding that is
/// missing or out of place leaves nothing. Texts with nothing to decode give an empty result.
std::optional<std::string> decode(std::string_view text);

/// The exact number of bytes that `encodeEscaped` writes at most.
std::size_t encodedEscapedBound(std::size_t byteCount);

/// Appends the base64 text of `bytes` to `out`, each slash as `\/` so that it can stand in a JSON string.
void appendEncodedEscaped(std::string& out, std::string_view bytes);

namespace scalar {
std::optional<std::string> decode(std::string_view text);
void appendEncodedEscaped(std::string& out, std::string_view bytes);
} // namespace scalar

} // namespace velloway::base64
