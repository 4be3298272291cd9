#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace velloway {

/// The numbers of a JSON text that fit neither a signed 64-bit integer nor a double. JSON allows them, the
/// parser does not: in a copy of the text, an integer between 2^63 and 2^64 stands in the place of each.
class OddNumbers {
public:
    /// The text with the stand-ins; absent when it has no such number. Works on any bytes: what is not JSON
    /// before is not JSON afterwards.
    std::optional<std::string> replaceIn(std::string_view text);
    void clear() { values_.clear(); }

    bool isEmpty() const { return values_.empty(); }
    /// Infinite when the number is beyond the range of a double.
    double valueOf(std::uint64_t standIn) const;

private:
    std::vector<double> values_;
};

} // namespace velloway
