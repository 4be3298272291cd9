#include "hosts/linux/input/X11Connection.h"

#include <cstdlib>
#include <xcb/xinput.h>
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

/// A server does not say who has grabbed what, but it refuses a grab that somebody has. The two kinds of grabs
/// do not exclude each other.
bool X11Connection::isKeyGrabbed(std::uint8_t keycode) {
    const bool isGrabbed = isGrabbedByCoreRequest(keycode) || isGrabbedByInputExtension(keycode);
    flush();
    return isGrabbed;
}

bool X11Connection::isGrabbedByCoreRequest(std::uint8_t keycode) {
    const auto grab = xcb_grab_key_checked(connection_, 0, root_, XCB_MOD_MASK_ANY, keycode,
                                           XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    const X11Reply<xcb_generic_error_t> error(xcb_request_check(connection_, grab));
    if (!error) {
        xcb_ungrab_key(connection_, keycode, root_, XCB_MOD_MASK_ANY);
    }
    return error && error->error_code == XCB_ACCESS;
}

bool X11Connection::isGrabbedByInputExtension(std::uint8_t keycode) {
    constexpr xcb_input_device_id_t allMasters = XCB_INPUT_DEVICE_ALL_MASTER;
    constexpr std::uint32_t anyModifier = XCB_INPUT_MODIFIER_MASK_ANY;
    constexpr std::uint32_t events = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
    const X11Reply<xcb_input_xi_passive_grab_device_reply_t> reply(xcb_input_xi_passive_grab_device_reply(
        connection_,
        xcb_input_xi_passive_grab_device(connection_, XCB_CURRENT_TIME, root_, XCB_NONE, keycode, allMasters, 1,
                                         1, XCB_INPUT_GRAB_TYPE_KEYCODE, XCB_INPUT_GRAB_MODE_22_ASYNC,
                                         XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER, &events,
                                         &anyModifier),
        nullptr));
    if (!reply) {
        return false;
    }
    if (reply->num_modifiers == 0) {
        xcb_input_xi_passive_ungrab_device(connection_, root_, keycode, allMasters, 1,
                                           XCB_INPUT_GRAB_TYPE_KEYCODE, &anyModifier);
    }
    return reply->num_modifiers > 0;
}

void X11Connection::sync() {
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

void X11Connection::discardEvents() {
    while (const X11Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
    }
}

} // namespace velloway
