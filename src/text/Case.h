#pragma once

#include <string>
#include <string_view>

/// Full case mapping, which may change the length of a text, by the rules that hold for every language.
namespace velloway {

std::string upperCased(std::string_view text);
std::string lowerCased(std::string_view text);

} // namespace velloway
