#pragma once

#include <string>
#include <string_view>

/// Full case mapping, which may change the length of a text, by the rules that hold for every language.
namespace velloway {

std::string upperCased(std::string_view text);
std::string lowerCased(std::string_view text);

/// Whether `text` holds nothing but ASCII, for which the quick operations below suffice.
bool isAscii(std::string_view text);

/// Any byte that is not an ASCII letter stays as it is.
constexpr char upperAscii(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
constexpr char lowerAscii(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace velloway
