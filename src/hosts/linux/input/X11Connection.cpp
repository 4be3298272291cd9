#include "hosts/linux/input/X11Connection.h"

#include <cstdlib>
#include <xcb/xtest.h>

namespace velloway {

X11Connection::X11Connection() {
    int screenNumber = 0;
    connection_ = xcb_connect(nullptr, &screenNumber);
    if (xcb_connection_has_error(connection_) != 0) {
        return;
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
    for (; screens.rem > 1 && screenNumber > 0; --screenNumber) {
        xcb_screen_next(&screens);
    }
    root_ = screens.data->root;

    const auto* extension = xcb_get_extension_data(connection_, &xcb_test_id);
    if (extension && extension->present != 0) {
        const X11Reply<xcb_test_get_version_reply_t> version(
            xcb_test_get_version_reply(connection_, xcb_test_get_version(connection_, 2, 2), nullptr));
        hasTestExtension_ = version != nullptr;
    }
}

X11Connection::~X11Connection() {
    xcb_disconnect(connection_);
}

bool X11Connection::isUsable() const {
    return hasTestExtension_ && xcb_connection_has_error(connection_) == 0;
}

void X11Connection::fakeInput(std::uint8_t type, std::uint8_t detail, xcb_window_t window, std::int16_t x,
                              std::int16_t y) {
    xcb_test_fake_input(connection_, type, detail, XCB_CURRENT_TIME, window, x, y, 0);
}

void X11Connection::sync() {
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

void X11Connection::discardEvents() {
    while (const X11Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
    }
}

} // namespace velloway
