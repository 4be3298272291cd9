#pragma once

#include "platform/InputEvents.h"
#include "platform/Scripts.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace velloway::test {

struct PressedKey {
    Key key = Key::escape;
    Modifiers modifiers;
    bool operator==(const PressedKey&) const = default;
};
struct TypedText {
    std::string text;
    bool operator==(const TypedText&) const = default;
};
struct MovedPointer {
    double dx = 0;
    double dy = 0;
    bool operator==(const MovedPointer&) const = default;
};
/// One operation of the port: keys, media keys and clicks stand for themselves.
using Input = std::variant<PressedKey, TypedText, MediaKey, MovedPointer, MouseButton>;

/// Records what was asked for, in order.
class FakeInputEvents : public InputEvents {
public:
    void pressKey(Key key, Modifiers modifiers) override { posted.emplace_back(PressedKey{key, modifiers}); }
    void typeText(std::string_view text) override {
        posted.emplace_back(std::in_place_type<TypedText>, std::string(text));
    }
    void pressMediaKey(MediaKey key) override { posted.emplace_back(key); }
    void movePointer(double dx, double dy) override { posted.emplace_back(MovedPointer{dx, dy}); }
    void click(MouseButton button) override { posted.emplace_back(button); }

    std::vector<Input> posted;
};

class FakeScripts : public Scripts {
public:
    std::optional<std::string> run(const SystemScript& script) override {
        scripts.push_back(script);
        return error;
    }

    std::vector<SystemScript> scripts;
    std::optional<std::string> error;
};

} // namespace velloway::test
