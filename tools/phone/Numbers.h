#pragma once

#include <optional>
#include <string>

namespace velloway::phone {

/// A finite decimal number that takes up all of `text`. (The charconv of libc++ 14 reads no fractions.)
std::optional<double> readNumber(const std::string& text);

/// Milliseconds since 1970.
double millisecondsNow();

} // namespace velloway::phone
