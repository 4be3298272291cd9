#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

/// The codec with a kernel of the caller's choice, for comparing one with another.
namespace velloway::base64 {

struct Kernel;

/// As the operations of the same names without "With".
std::optional<std::size_t> decodeWith(const Kernel& kernel, std::string_view text, char* room);
void appendEncodedEscapedWith(const Kernel& kernel, std::string& out, std::string_view bytes);
std::size_t encodedEscapedSizeWith(const Kernel& kernel, std::string_view bytes);

} // namespace velloway::base64
