#pragma once

#include "hosts/linux/input/X11Connection.h"
#include "platform/InputEvents.h"

#include <cstdint>
#include <optional>

namespace velloway {

/// The pointer of an X server. The server knows whole pixels only, so the fraction of the last move is kept
/// until somebody else moves the pointer.
class X11Pointer {
public:
    bool isUsable() const { return connection_.isUsable(); }

    struct Point {
        double x = 0;
        double y = 0;
        bool operator==(const Point&) const = default;
    };
    /// With the fraction that earlier moves left over; absent when the server does not answer.
    std::optional<Point> position();
    /// Beyond the edge of the screens the server stops the pointer there.
    void moveBy(double dx, double dy);
    void click(MouseButton button);

private:
    struct Pixel {
        std::int16_t x = 0;
        std::int16_t y = 0;
        bool operator==(const Pixel&) const = default;
    };
    /// Where the last move led, exactly and as it was sent.
    struct Kept {
        Point exact;
        Pixel sent;
    };

    static Pixel pixelOf(Point point);

    X11Connection connection_;
    /// The root window that the pointer was last seen on.
    xcb_window_t root_ = connection_.root();
    std::optional<Kept> kept_;
};

} // namespace velloway
