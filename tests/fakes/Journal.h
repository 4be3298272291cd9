#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace velloway::test {

/// What the fakes were asked to do, in order. Several fakes can share one, so that a test can look at the
/// order across ports.
class Journal {
public:
    void note(std::string entry) {
        entries_.push_back(std::move(entry));
        if (onNote) {
            onNote(entries_.back());
        }
    }
    /// Called for each entry as it comes.
    std::function<void(const std::string& entry)> onNote;
    const std::vector<std::string>& entries() const { return entries_; }
    std::vector<std::string> take() { return std::exchange(entries_, {}); }

private:
    std::vector<std::string> entries_;
};

} // namespace velloway::test
