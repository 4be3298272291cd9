#include "remote/InputInjection.h"

#include <array>
#include <utility>

namespace velloway {

namespace {

constexpr auto modifierNames = std::to_array<std::pair<std::string_view, bool Modifiers::*>>({
    {"cmd", &Modifiers::command},
    {"ctrl", &Modifiers::control},
    {"option", &Modifiers::option},
    {"shift", &Modifiers::shift},
});

Modifiers modifiersOf(std::span<const std::string_view> names) {
    Modifiers modifiers;
    for (const std::string_view name : names) {
        for (const auto& [known, modifier] : modifierNames) {
            if (name == known) {
                modifiers.*modifier = true;
            }
        }
    }
    return modifiers;
}

} // namespace

void InputInjection::sendCGKey(Key key, std::span<const std::string_view> modifiers) const {
    events_->pressKey(key, modifiersOf(modifiers));
}

void InputInjection::click(std::string_view button) const {
    events_->click(button == "right" ? MouseButton::right : MouseButton::left);
}

} // namespace velloway
