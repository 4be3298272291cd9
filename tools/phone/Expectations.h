#pragma once

#include <deque>
#include <optional>
#include <string>

namespace velloway::phone {

/// What a script waits for, one pattern at a time, among the messages that have come.
class Expectations {
public:
    void add(const std::string& message);
    void begin(std::string pattern) { pattern_ = std::move(pattern); }
    void giveUp() { pattern_.reset(); }

    bool areOpen() const { return pattern_.has_value(); }
    /// Passes over the messages up to the first that fits the pattern, which is closed with it.
    bool areMet();

private:
    std::optional<std::string> pattern_;
    /// Messages that no pattern has passed yet, with their long texts cut.
    std::deque<std::string> seen_;
};

} // namespace velloway::phone
