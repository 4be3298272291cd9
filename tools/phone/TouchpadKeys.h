#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace velloway::phone {

/// Turns the bytes of a raw terminal into messages for the computer: arrows move the pointer (with Shift
/// further), Enter clicks, Tab clicks on the right, Backspace deletes, text is typed.
class TouchpadKeys {
public:
    /// `bytes` is what one read gave: an Escape with nothing after it is the key itself.
    std::vector<std::string> read(std::string_view bytes);

    /// Whether the user has asked to leave, by Escape or by `~.`.
    bool isOver() const { return isOver_; }

private:
    std::size_t readEscape(std::string_view bytes, std::vector<std::string>& out);
    void flushText(std::vector<std::string>& out);

    std::string text_;
    bool hasTilde_ = false;
    bool isOver_ = false;
};

} // namespace velloway::phone
