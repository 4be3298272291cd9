#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Whole numbers as a user types and reads them: in the digits of the locale, without grouping.
namespace velloway {

std::string wholeNumberText(std::int64_t number, const std::string& locale);

/// Takes the digits of any script and blanks around the number. Absent for anything but one whole number
/// within signed 64 bits.
std::optional<std::int64_t> parseWholeNumber(std::string_view text, const std::string& locale);

} // namespace velloway
