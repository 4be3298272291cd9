#include "hosts/linux/input/X11Pointer.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace velloway {

namespace {

std::int16_t rounded(double coordinate) {
    using Limits = std::numeric_limits<std::int16_t>;
    // Written so that a value that is not a number comes out as 0.
    if (!(coordinate > Limits::min())) {
        return coordinate <= Limits::min() ? Limits::min() : std::int16_t{0};
    }
    return static_cast<std::int16_t>(std::min<double>(std::floor(coordinate + 0.5), Limits::max()));
}

} // namespace

X11Pointer::Pixel X11Pointer::pixelOf(Point point) {
    return {rounded(point.x), rounded(point.y)};
}

std::optional<X11Pointer::Point> X11Pointer::position() {
    connection_.discardEvents();
    xcb_connection_t* connection = connection_.get();
    const X11Reply<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(connection, xcb_query_pointer(connection, root_), nullptr));
    if (!reply) {
        return std::nullopt;
    }
    root_ = reply->root;
    const Pixel real{reply->root_x, reply->root_y};
    if (kept_ && kept_->sent == real) {
        return kept_->exact;
    }
    kept_.reset();
    return Point{static_cast<double>(real.x), static_cast<double>(real.y)};
}

void X11Pointer::moveBy(double dx, double dy) {
    const auto here = position();
    if (!here) {
        return;
    }
    const Point to{here->x + dx, here->y + dy};
    kept_ = Kept{.exact = to, .sent = pixelOf(to)};
    constexpr std::uint8_t absolute = 0;
    connection_.fakeInput(XCB_MOTION_NOTIFY, absolute, root_, kept_->sent.x, kept_->sent.y);
    connection_.flush();
}

void X11Pointer::click(MouseButton button) {
    connection_.discardEvents();
    const std::uint8_t number = button == MouseButton::right ? 3 : 1;
    connection_.fakeInput(XCB_BUTTON_PRESS, number);
    connection_.fakeInput(XCB_BUTTON_RELEASE, number);
    connection_.flush();
}

} // namespace velloway
