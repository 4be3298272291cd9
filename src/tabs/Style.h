#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace velloway {

/// The colours that the rules of the tabs and panels speak of; `palette` has the value of each under its name.
enum class ColorRole { primary, secondary, tint, white, red, green, blue, orange };

/// More bytes than any row shows of a name or a text. A copy of all of a large text for each row and each
/// reading would hold the window up.
inline constexpr std::size_t rowBytes = 4096;

/// 0xAARRGGBB, not multiplied by the alpha.
using Argb = std::uint32_t;

struct PaletteColor {
    std::string_view name;
    Argb light;
    Argb dark;
};

/// Every colour of the views and of the windows that are made without them.
inline constexpr auto palette = std::to_array<PaletteColor>({
    {"window", 0xfff6f6f7, 0xff1f1f21},
    {"sidebar", 0xffebebed, 0xff29292c},
    {"controlBackground", 0xffffffff, 0xff2c2c2f},
    {"underPage", 0xfff2f2f4, 0xff19191b},
    {"fieldBackground", 0x0d000000, 0x14ffffff},
    {"separator", 0x1c000000, 0x24ffffff},
    {"outline", 0x24000000, 0x30ffffff},
    {"hover", 0x0f000000, 0x12ffffff},
    {"pressed", 0x1f000000, 0x24ffffff},
    {"button", 0xffffffff, 0xff3a3a3e},
    {"panel", 0xf0f4f4f6, 0xf02b2b2e},
    {"panelOpaque", 0xfff4f4f6, 0xff2b2b2e},
    {"primary", 0xff1d1d1f, 0xfff5f5f7},
    {"secondary", 0xff5f5f65, 0xffa9a9af},
    {"tertiary", 0xff68686e, 0xff9c9ca2},
    {"white", 0xffffffff, 0xffffffff},
    // Grounds under white; text and symbols in the same colour use the entry that ends in Text.
    {"blue", 0xff006adc, 0xff0b72ea},
    {"green", 0xff1f8a3b, 0xff249a43},
    {"red", 0xffd92d24, 0xffe5382e},
    {"blueText", 0xff0060c8, 0xff5aaeff},
    {"greenText", 0xff187a33, 0xff30d158},
    {"redText", 0xffc8241c, 0xffff7068},
    {"orange", 0xffb86200, 0xffff9f0a},
    {"gray", 0xff8e8e93, 0xff8e8e93},
    {"purple", 0xffa044d0, 0xffa04fd2},
    {"focusRing", 0xff0060c8, 0xff5aaeff},
    {"fieldOutline", 0xff86868b, 0xff85858b},
});

/// A name that the palette does not have is an error in compiling.
consteval PaletteColor paletteColor(std::string_view name) {
    for (const PaletteColor& color : palette) {
        if (color.name == name) {
            return color;
        }
    }
    throw "no such colour";
}

} // namespace velloway
