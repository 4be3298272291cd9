#pragma once

#include <string_view>

/// Both cut from both ends and give a view into `text`.
namespace velloway {

/// Cuts tabs and the space characters of Unicode; line breaks stay.
std::string_view trimBlanks(std::string_view text);
/// Cuts line and paragraph ends as well.
std::string_view trimBlanksAndLineEnds(std::string_view text);

} // namespace velloway
