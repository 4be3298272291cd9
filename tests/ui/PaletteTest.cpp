#include "tabs/Style.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <vector>

namespace velloway::test {
namespace {

struct Color {
    double red, green, blue, alpha;
};

Color colorOf(Argb value) {
    const auto part = [value](unsigned shift) { return ((value >> shift) & 0xffU) / 255.0; };
    return {part(16), part(8), part(0), part(24)};
}

Color over(Color top, Color ground) {
    const auto mix = [&](double a, double b) { return a * top.alpha + b * (1 - top.alpha); };
    return {mix(top.red, ground.red), mix(top.green, ground.green), mix(top.blue, ground.blue), 1};
}

double luminance(Color color) {
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

double contrast(Color one, Color other) {
    const auto [darker, lighter] = std::minmax(luminance(one), luminance(other));
    return (lighter + 0.05) / (darker + 0.05);
}

const PaletteColor& entry(std::string_view name) {
    return *std::find_if(palette.begin(), palette.end(), [&](const auto& color) { return color.name == name; });
}

/// What is drawn, on what, and the least contrast that it needs.
struct Pair {
    std::string_view mark;
    std::vector<std::string_view> grounds;
    double least;
    /// Of a tint between the ground and the mark, absent with an opacity of 0.
    std::string_view wash = "blue";
    double opacity = 0;
};

constexpr double forText = 4.5;
constexpr double forMarks = 3;

const std::vector<std::string_view> pages{"window", "controlBackground", "underPage", "panelOpaque", "sidebar"};

const std::vector<Pair> pairs{
    {"primary", pages, forText},
    {"primary", {"button"}, forText},
    {"secondary", pages, forText},
    {"secondary", {"window"}, forText, "blue", 0.15},
    {"tertiary", {"window", "controlBackground", "underPage", "panelOpaque"}, forText},
    {"blueText", pages, forText},
    {"blueText", {"window"}, forText, "blueText", 0.12},
    {"greenText", {"window", "controlBackground"}, forText},
    {"redText", {"window", "controlBackground"}, forText},
    {"greenText", {"panelOpaque"}, forMarks, "greenText", 0.2},
    {"blueText", {"panelOpaque"}, forMarks, "blueText", 0.2},
    {"orange", {"window"}, forMarks, "orange", 0.1},
    {"white", {"blue"}, forText},
    {"white", {"green", "red"}, forMarks},
    {"focusRing", {"window", "sidebar", "controlBackground", "underPage", "button"}, forMarks},
    {"fieldOutline", {"window", "controlBackground", "underPage", "button"}, forMarks},
};

TEST(Palette, EverythingStandsOutFromItsGround) {
    for (const Pair& pair : pairs) {
        for (const std::string_view ground : pair.grounds) {
            for (const auto mode : {&PaletteColor::light, &PaletteColor::dark}) {
                Color wash = colorOf(entry(pair.wash).*mode);
                wash.alpha = pair.opacity;
                const Color below = over(wash, colorOf(entry(ground).*mode));
                EXPECT_GE(contrast(over(colorOf(entry(pair.mark).*mode), below), below), pair.least)
                    << pair.mark << " on " << ground << (mode == &PaletteColor::dark ? ", dark" : ", light");
            }
        }
    }
}

} // namespace
} // namespace velloway::test
