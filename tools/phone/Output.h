#pragma once

#include <string>

namespace velloway::phone {

/// What the user sees: every line with its time, or, when raw, messages alone on standard output and all the
/// rest among the errors.
class Output {
public:
    explicit Output(bool isRaw) : isRaw_(isRaw) {}

    /// The message as it came.
    void write(const std::string& message) const;
    /// `direction`: `<` from the computer, `>` to it, `-` neither.
    void show(char direction, const std::string& line) const;
    void note(const std::string& line) const;

private:
    bool isRaw_;
};

} // namespace velloway::phone
