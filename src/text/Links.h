#pragma once

#include <string_view>
#include <vector>

namespace velloway {

/// The web addresses in a text, in their order; each is a part of `text`. Punctuation that ends a sentence is
/// no part of an address, nor is a closing bracket that opens outside of it.
std::vector<std::string_view> webLinks(std::string_view text);

} // namespace velloway
