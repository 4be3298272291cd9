#include "hosts/linux/input/LinuxInputEvents.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace velloway {

namespace {

struct KeyName {
    std::int64_t number;
    std::uint32_t keysym;
};

constexpr std::array<KeyName, 10> virtualKeys{{
    {36, XKB_KEY_Return},
    {51, XKB_KEY_BackSpace},
    {53, XKB_KEY_Escape},
    {55, XKB_KEY_Super_L},
    {58, XKB_KEY_Alt_L},
    {59, XKB_KEY_Control_L},
    {123, XKB_KEY_Left},
    {124, XKB_KEY_Right},
    {125, XKB_KEY_Down},
    {126, XKB_KEY_Up},
}};

constexpr std::array<KeyName, 10> systemKeys{{
    {0, XKB_KEY_XF86AudioRaiseVolume},
    {1, XKB_KEY_XF86AudioLowerVolume},
    {2, XKB_KEY_XF86MonBrightnessUp},
    {3, XKB_KEY_XF86MonBrightnessDown},
    {7, XKB_KEY_XF86AudioMute},
    {16, XKB_KEY_XF86AudioPlay},
    {17, XKB_KEY_XF86AudioNext},
    {18, XKB_KEY_XF86AudioPrev},
    {21, XKB_KEY_XF86KbdBrightnessUp},
    {22, XKB_KEY_XF86KbdBrightnessDown},
}};

constexpr std::array<std::pair<std::uint64_t, std::uint32_t>, 4> modifierKeys{{
    {eventFlags::command, XKB_KEY_Super_L},
    {eventFlags::control, XKB_KEY_Control_L},
    {eventFlags::alternate, XKB_KEY_Alt_L},
    {eventFlags::shift, XKB_KEY_Shift_L},
}};

template <std::size_t size>
std::optional<std::uint32_t> keysymOf(const std::array<KeyName, size>& table, std::int64_t number) {
    for (const KeyName& each : table) {
        if (each.number == number) {
            return each.keysym;
        }
    }
    return std::nullopt;
}

class LinuxEvent : public InputEvent {
public:
    void setFlags(std::uint64_t) override {}
    void setUnicodeString(std::u16string_view) override {}
    Point location() const override { return {}; }

    virtual void post(InputBackend& backend) = 0;
};

class KeyboardEvent : public LinuxEvent {
public:
    KeyboardEvent(std::uint16_t virtualKey, bool keyDown)
        : keysym_(keysymOf(virtualKeys, virtualKey)), isDown_(keyDown) {}

    void setFlags(std::uint64_t flags) override { flags_ = flags; }
    void setUnicodeString(std::u16string_view units) override { text_ = std::u16string(units); }

    void post(InputBackend& backend) override {
        if (text_) {
            backend.postText(std::move(*text_));
        } else if (keysym_) {
            backend.postKey({.keysym = *keysym_, .modifiers = modifiers()}, isDown_);
        }
    }

private:
    std::vector<std::uint32_t> modifiers() const {
        std::vector<std::uint32_t> keysyms;
        for (const auto& [flag, modifier] : modifierKeys) {
            // A modifier key that is itself the key is not held around itself.
            if ((flags_ & flag) != 0 && modifier != keysym_) {
                keysyms.push_back(modifier);
            }
        }
        return keysyms;
    }

    /// Absent for keys that nobody sends, among them the one that carries a text.
    std::optional<std::uint32_t> keysym_;
    bool isDown_;
    std::uint64_t flags_ = 0;
    std::optional<std::u16string> text_;
};

class EmptyEvent : public LinuxEvent {
public:
    explicit EmptyEvent(Point location) : location_(location) {}
    Point location() const override { return location_; }
    void post(InputBackend&) override {}

private:
    Point location_;
};

class MouseEvent : public LinuxEvent {
public:
    MouseEvent(MouseEventType type, Point position, MouseButton button)
        : type_(type), position_(position), button_(button) {}

    Point location() const override { return position_; }

    /// A button goes to where the pointer is: that is where its event was made for.
    void post(InputBackend& backend) override {
        if (type_ == MouseEventType::moved) {
            backend.movePointer(position_);
        } else {
            backend.postButton(button_,
                               type_ == MouseEventType::leftDown || type_ == MouseEventType::rightDown);
        }
    }

private:
    MouseEventType type_;
    Point position_;
    MouseButton button_;
};

class SystemKeyEvent : public LinuxEvent {
public:
    SystemKeyEvent(std::uint32_t keysym, bool isDown) : keysym_(keysym), isDown_(isDown) {}
    void post(InputBackend& backend) override {
        backend.postKey({.keysym = keysym_, .modifiers = {}}, isDown_);
    }

private:
    std::uint32_t keysym_;
    bool isDown_;
};

} // namespace

std::unique_ptr<EventSource> LinuxInputEvents::makeSource(EventSourceState) {
    return backend_.isReady() ? std::make_unique<EventSource>() : nullptr;
}

std::unique_ptr<InputEvent> LinuxInputEvents::makeKeyboardEvent(EventSource&, std::uint16_t virtualKey,
                                                                bool keyDown) {
    return std::make_unique<KeyboardEvent>(virtualKey, keyDown);
}

std::unique_ptr<InputEvent> LinuxInputEvents::makeEvent() {
    const auto position = backend_.pointerPosition();
    return position ? std::make_unique<EmptyEvent>(*position) : nullptr;
}

std::unique_ptr<InputEvent> LinuxInputEvents::makeMouseEvent(MouseEventType type, Point position,
                                                             MouseButton button) {
    return std::make_unique<MouseEvent>(type, position, button);
}

std::unique_ptr<InputEvent> LinuxInputEvents::makeSystemDefinedEvent(std::uint64_t, std::int16_t,
                                                                     std::int64_t data1, std::int64_t) {
    constexpr std::int64_t keyDown = 0xA00;
    const auto keysym = keysymOf(systemKeys, data1 >> 16);
    return keysym ? std::make_unique<SystemKeyEvent>(*keysym, (data1 & 0xFFFF) == keyDown) : nullptr;
}

void LinuxInputEvents::post(InputEvent& event) {
    static_cast<LinuxEvent&>(event).post(backend_);
}

} // namespace velloway
