#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>

namespace velloway {

/// The keymap of a keyboard that has whatever keys are asked of it. A key keeps its meaning for as long as
/// there is room, so that programs that look a key up late still find what was typed.
class VirtualKeymap {
public:
    struct Provided {
        /// How many of the keysyms, from the first, have a key now.
        std::size_t count = 0;
        /// The keymap has more keys than before.
        bool isExtended = false;
        /// Earlier keys have lost their meaning.
        bool isRestarted = false;
    };

    /// Gives keys to keysyms in this order, as far as there is room.
    Provided provide(std::span<const std::uint32_t> keysyms);

    /// The kernel's number of the key. Absent for what was never provided.
    std::optional<std::uint32_t> keycodeOf(std::uint32_t keysym) const;
    /// The modifier that holding this key means, by its place in the masks of X; 0 for other keys.
    static std::uint32_t modifierOf(std::uint32_t keysym);

    /// In the format of XKB.
    std::string text() const;

private:
    bool add(std::uint32_t keysym);

    std::unordered_map<std::uint32_t, std::uint32_t> keycodes_;
    std::uint32_t next_ = 0;
};

} // namespace velloway
