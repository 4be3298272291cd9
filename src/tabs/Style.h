#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace velloway {

/// The colours that the rules of the tabs and panels speak of; `palette` has the value of each under its name.
enum class ColorRole { primary, secondary, tint, white, red, green, blue, orange };

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
    {"secondary", 0xff6c6c72, 0xffa5a5ab},
    {"tertiary", 0xff8b8b91, 0xff85858b},
    {"white", 0xffffffff, 0xffffffff},
    {"blue", 0xff0a7bff, 0xff0a84ff},
    {"green", 0xff2db84f, 0xff30d158},
    {"red", 0xfff5392f, 0xffff453a},
    {"orange", 0xfff08c00, 0xffff9f0a},
    {"gray", 0xff8e8e93, 0xff8e8e93},
    {"purple", 0xffaf52de, 0xffbf5af2},
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
