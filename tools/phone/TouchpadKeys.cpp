#include "phone/TouchpadKeys.h"

#include "phone/Messages.h"

namespace velloway::phone {

namespace {

constexpr double step = 12;
constexpr double longStep = 60;

std::string arrow(char letter, double distance) {
    switch (letter) {
    case 'A':
        return messages::pointerMove(0, -distance);
    case 'B':
        return messages::pointerMove(0, distance);
    case 'C':
        return messages::pointerMove(distance, 0);
    case 'D':
        return messages::pointerMove(-distance, 0);
    default:
        return {};
    }
}

} // namespace

void TouchpadKeys::flushText(std::vector<std::string>& out) {
    if (!text_.empty()) {
        out.push_back(messages::typedText(text_));
        text_.clear();
    }
}

/// Returns how many bytes the key took.
std::size_t TouchpadKeys::readEscape(std::string_view bytes, std::vector<std::string>& out) {
    if (bytes.size() < 3 || (bytes[1] != '[' && bytes[1] != 'O')) {
        isOver_ = true;
        return bytes.size();
    }
    std::size_t end = 2;
    while (end < bytes.size() && (bytes[end] < '@' || bytes[end] > '~')) {
        ++end;
    }
    if (end == bytes.size()) {
        return end;
    }
    const bool isShifted = bytes.substr(2, end - 2) == "1;2";
    const std::string message = arrow(bytes[end], isShifted ? longStep : step);
    if (!message.empty()) {
        out.push_back(message);
    }
    return end + 1;
}

std::vector<std::string> TouchpadKeys::read(std::string_view bytes) {
    std::vector<std::string> out;
    std::size_t at = 0;
    while (at < bytes.size() && !isOver_) {
        const char key = bytes[at];
        if (hasTilde_) {
            hasTilde_ = false;
            if (key == '.') {
                isOver_ = true;
                break;
            }
            text_ += '~';
        }
        if (key == '\x1b') {
            flushText(out);
            at += readEscape(bytes.substr(at), out);
            continue;
        }
        ++at;
        if (key == '\r' || key == '\n') {
            flushText(out);
            out.push_back(messages::pointerClick("left"));
        } else if (key == '\t') {
            flushText(out);
            out.push_back(messages::pointerClick("right"));
        } else if (key == '\x7f' || key == '\b') {
            flushText(out);
            out.push_back(messages::remoteControl("key_delete", "remote"));
        } else if (key == '~') {
            hasTilde_ = true;
        } else if (static_cast<unsigned char>(key) >= ' ') {
            text_ += key;
        }
    }
    flushText(out);
    return out;
}

} // namespace velloway::phone
