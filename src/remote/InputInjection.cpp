#include "remote/InputInjection.h"

#include <array>
#include <cstddef>
#include <string>
#include <utility>

namespace velloway {

namespace {

constexpr std::array<std::pair<std::string_view, std::uint64_t>, 4> modifierFlags{{
    {"cmd", eventFlags::command},
    {"ctrl", eventFlags::control},
    {"option", eventFlags::alternate},
    {"shift", eventFlags::shift},
}};

std::uint64_t flagsOf(std::span<const std::string_view> modifiers) {
    std::uint64_t flags = 0;
    for (const std::string_view modifier : modifiers) {
        for (const auto& [name, flag] : modifierFlags) {
            if (modifier == name) {
                flags |= flag;
            }
        }
    }
    return flags;
}

constexpr char32_t replacementCharacter = 0xFFFD;

/// Takes the next code point off a text that is not empty. Bytes that are no UTF-8 become replacement
/// characters, so that a careless caller does no harm.
char32_t takeCodePoint(std::string_view& text) {
    const auto byteAt = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned char first = byteAt(0);
    std::size_t length = 1;
    char32_t codePoint = first;
    char32_t smallest = 0;
    if (first >= 0xF0 && first < 0xF8) {
        length = 4;
        codePoint = first & 0x07U;
        smallest = 0x10000;
    } else if (first >= 0xE0) {
        length = 3;
        codePoint = first & 0x0FU;
        smallest = 0x800;
    } else if (first >= 0xC0) {
        length = 2;
        codePoint = first & 0x1FU;
        smallest = 0x80;
    }
    bool isValid = first < 0x80 || (first >= 0xC0 && first < 0xF8 && length <= text.size());
    for (std::size_t index = 1; isValid && index < length; ++index) {
        isValid = (byteAt(index) & 0xC0U) == 0x80U;
        codePoint = codePoint << 6U | (byteAt(index) & 0x3FU);
    }
    const bool isSurrogate = codePoint >= 0xD800 && codePoint <= 0xDFFF;
    if (!isValid || codePoint < smallest || codePoint > 0x10FFFF || isSurrogate) {
        text.remove_prefix(1);
        return replacementCharacter;
    }
    text.remove_prefix(length);
    return codePoint;
}

std::u16string utf16(std::string_view text) {
    std::u16string units;
    units.reserve(text.size());
    while (!text.empty()) {
        const char32_t codePoint = takeCodePoint(text);
        if (codePoint < 0x10000) {
            units.push_back(static_cast<char16_t>(codePoint));
        } else {
            const char32_t offset = codePoint - 0x10000;
            units.push_back(static_cast<char16_t>(0xD800 + (offset >> 10U)));
            units.push_back(static_cast<char16_t>(0xDC00 + (offset & 0x3FFU)));
        }
    }
    return units;
}

} // namespace

void InputInjection::sendCGKey(std::uint16_t keyCode, std::span<const std::string_view> modifiers) const {
    const auto source = events_->makeSource(EventSourceState::hidSystemState);
    if (!source) {
        return;
    }
    const auto keyDown = events_->makeKeyboardEvent(*source, keyCode, true);
    if (!keyDown) {
        return;
    }
    const auto keyUp = events_->makeKeyboardEvent(*source, keyCode, false);
    if (!keyUp) {
        return;
    }
    const std::uint64_t flags = flagsOf(modifiers);
    keyDown->setFlags(flags);
    keyUp->setFlags(flags);
    events_->post(*keyDown);
    events_->post(*keyUp);
}

void InputInjection::sendUnicodeText(std::string_view text) const {
    const std::u16string units = utf16(text);
    const auto source = events_->makeSource(EventSourceState::hidSystemState);
    if (!source) {
        return;
    }
    const auto keyDown = events_->makeKeyboardEvent(*source, 0, true);
    if (!keyDown) {
        return;
    }
    keyDown->setUnicodeString(units);
    events_->post(*keyDown);
    const auto keyUp = events_->makeKeyboardEvent(*source, 0, false);
    if (!keyUp) {
        return;
    }
    events_->post(*keyUp);
}

void InputInjection::sendSystemMediaKey(std::int32_t key) const {
    postEvent(key, true);
    postEvent(key, false);
}

void InputInjection::postEvent(std::int32_t key, bool down) const {
    constexpr std::int16_t auxiliaryControlButtons = 8;
    const std::uint32_t flags = down ? 0xA00 : 0xB00;
    const auto data1 = static_cast<std::int32_t>(static_cast<std::uint32_t>(key) << 16U | flags);
    const auto event = events_->makeSystemDefinedEvent(flags, auxiliaryControlButtons, data1, -1);
    if (event) {
        events_->post(*event);
    }
}

void InputInjection::movePointer(double dx, double dy) const {
    const auto here = events_->makeEvent();
    if (!here) {
        return;
    }
    const Point from = here->location();
    const Point to{from.x + dx, from.y + dy};
    const auto move = events_->makeMouseEvent(MouseEventType::moved, to, MouseButton::left);
    if (move) {
        events_->post(*move);
    }
}

void InputInjection::click(std::string_view button) const {
    const auto here = events_->makeEvent();
    if (!here) {
        return;
    }
    const Point position = here->location();
    const bool isRight = button == "right";
    const MouseButton which = isRight ? MouseButton::right : MouseButton::left;
    const auto down = events_->makeMouseEvent(isRight ? MouseEventType::rightDown : MouseEventType::leftDown,
                                              position, which);
    if (!down) {
        return;
    }
    const auto up =
        events_->makeMouseEvent(isRight ? MouseEventType::rightUp : MouseEventType::leftUp, position, which);
    if (!up) {
        return;
    }
    events_->post(*down);
    events_->post(*up);
}

} // namespace velloway
