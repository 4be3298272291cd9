#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace velloway::phone {

/// Standard alphabet, padded, without line breaks.
std::string encodeBase64(std::string_view bytes);

/// Absent when `text` is not exactly what an encoder writes, but for line breaks.
std::optional<std::string> decodeBase64(std::string_view text);

} // namespace velloway::phone
