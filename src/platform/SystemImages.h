#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace velloway {

struct PixelSize {
    int width = 0;
    int height = 0;
};

/// Each part from 0 to 1, the colours not multiplied by alpha.
struct Tint {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;
};

/// Row by row from the top, without gaps: red, green, blue and alpha, a byte each, the colours multiplied by
/// alpha.
struct Bitmap {
    PixelSize size;
    std::vector<std::uint8_t> rgba;
};

/// The images that a desktop has of its own, for the views alone: the core names symbols and never draws one. A
/// host without such images has no adapter.
///
/// An answer has exactly the size asked for, at least one pixel each way, with the image in its middle and in
/// its own proportions. There is none when the desktop does not know the image or can't draw it.
class SystemImages {
public:
    virtual ~SystemImages() = default;

    /// Any thread.
    virtual std::optional<Bitmap> symbol(std::string_view name, PixelSize size, const Tint& tint) const = 0;
    /// Main thread only.
    virtual std::optional<Bitmap> applicationIcon(PixelSize size) const = 0;
};

} // namespace velloway
