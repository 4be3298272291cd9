#include "XServer.h"

#include <xcb/xinput.h>
#define explicit explicitField
#include <xcb/xkb.h>
#undef explicit
#include <xkbcommon/xkbcommon.h>

#include <algorithm>
#include <array>
#include <utility>

namespace velloway::test {

namespace {

/// The core keyboard's keysyms: how many a key has, and all of them.
struct CoreMap {
    explicit CoreMap(X11Connection& connection) {
        const auto* setup = xcb_get_setup(connection.get());
        first = setup->min_keycode;
        const auto cookie = xcb_get_keyboard_mapping(connection.get(), first,
                                                     static_cast<std::uint8_t>(setup->max_keycode - first + 1));
        reply.reset(xcb_get_keyboard_mapping_reply(connection.get(), cookie, nullptr));
        width = reply->keysyms_per_keycode;
    }
    std::uint32_t at(unsigned keycode, unsigned level = 0) const {
        return xcb_get_keyboard_mapping_keysyms(reply.get())[(keycode - first) * width + level];
    }
    unsigned first = 0;
    unsigned width = 0;
    X11Reply<xcb_get_keyboard_mapping_reply_t> reply;
};

} // namespace

XServer::XServer() {
    xcb_connection_t* server = connection_.get();
    const X11Reply<xcb_xkb_use_extension_reply_t> xkb(
        xcb_xkb_use_extension_reply(server, xcb_xkb_use_extension(server, 1, 0), nullptr));
    const X11Reply<xcb_input_xi_query_version_reply_t> input(
        xcb_input_xi_query_version_reply(server, xcb_input_xi_query_version(server, 2, 0), nullptr));
}

bool XServer::focus(xcb_window_t window) {
    xcb_connection_t* server = connection_.get();
    const X11Reply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(server, xcb_get_window_attributes(server, window), nullptr));
    if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE) {
        return false;
    }
    xcb_set_input_focus(server, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    // Keys that are sent from now on go there.
    std::free(xcb_get_input_focus_reply(server, xcb_get_input_focus(server), nullptr));
    return true;
}

std::vector<std::uint8_t> XServer::keymaps() {
    xcb_connection_t* server = connection_.get();
    std::vector<std::uint8_t> all;
    const X11Reply<xcb_input_xi_query_device_reply_t> devices(xcb_input_xi_query_device_reply(
        server, xcb_input_xi_query_device(server, XCB_INPUT_DEVICE_ALL), nullptr));
    for (auto each = xcb_input_xi_query_device_infos_iterator(devices.get()); each.rem > 0;
         xcb_input_xi_device_info_next(&each)) {
        const auto type = each.data->type;
        if (type != XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD && type != XCB_INPUT_DEVICE_TYPE_MASTER_KEYBOARD) {
            continue;
        }
        constexpr std::uint16_t everyPart = 0xFF;
        const X11Reply<xcb_xkb_get_map_reply_t> map(
            xcb_xkb_get_map_reply(server,
                                  xcb_xkb_get_map(server, each.data->deviceid, everyPart, 0, 0, 0, 0, 0, 0, 0,
                                                  0, 0, 0, 0, 0, 0, 0, 0, 0),
                                  nullptr));
        // The sequence number differs from answer to answer.
        map->sequence = 0;
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(map.get());
        all.insert(all.end(), bytes, bytes + 32 + std::size_t{map->length} * 4);
    }
    return all;
}

std::vector<std::uint8_t> XServer::keycodesOf(std::uint32_t keysym) {
    const CoreMap map(connection_);
    std::vector<std::uint8_t> keycodes;
    for (unsigned keycode = map.first; keycode <= 255; ++keycode) {
        if (map.at(keycode) == keysym) {
            keycodes.push_back(static_cast<std::uint8_t>(keycode));
        }
    }
    return keycodes;
}

bool XServer::hasKeysym(std::uint32_t keysym) {
    return !keycodesOf(keysym).empty();
}

void XServer::clearKey(std::uint8_t keycode) {
    const xcb_keysym_t none = XKB_KEY_NoSymbol;
    xcb_change_keyboard_mapping(connection_.get(), 1, keycode, 1, &none);
    connection_.flush();
}

bool XServer::isAnyKeyDown() {
    const X11Reply<xcb_query_keymap_reply_t> reply(
        xcb_query_keymap_reply(connection_.get(), xcb_query_keymap(connection_.get()), nullptr));
    return std::any_of(std::begin(reply->keys), std::end(reply->keys),
                       [](std::uint8_t keys) { return keys != 0; });
}

XServer::Position XServer::pointer() {
    const X11Reply<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(
        connection_.get(), xcb_query_pointer(connection_.get(), connection_.root()), nullptr));
    return {reply->root_x, reply->root_y};
}

void XServer::warpPointer(int x, int y) {
    xcb_warp_pointer(connection_.get(), XCB_NONE, connection_.root(), 0, 0, 0, 0, static_cast<std::int16_t>(x),
                     static_cast<std::int16_t>(y));
    pointer();
}

bool XServer::isCapsLocked() {
    const X11Reply<xcb_xkb_get_state_reply_t> state(xcb_xkb_get_state_reply(
        connection_.get(), xcb_xkb_get_state(connection_.get(), XCB_XKB_ID_USE_CORE_KBD), nullptr));
    return (state->lockedMods & XCB_MOD_MASK_LOCK) != 0;
}

void XServer::setCapsLocked(bool isLocked) {
    xcb_xkb_latch_lock_state(connection_.get(), XCB_XKB_ID_USE_CORE_KBD, XCB_MOD_MASK_LOCK,
                             isLocked ? XCB_MOD_MASK_LOCK : 0, 0, 0, 0, 0, 0);
    isCapsLocked();
}

XRecorder::XRecorder() {
    xcb_connection_t* server = connection_.get();
    xcb_grab_key(server, 1, connection_.root(), XCB_MOD_MASK_ANY, XCB_GRAB_ANY, XCB_GRAB_MODE_ASYNC,
                 XCB_GRAB_MODE_ASYNC);
    xcb_grab_button(server, 1, connection_.root(), XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE,
                    XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_BUTTON_INDEX_ANY,
                    XCB_MOD_MASK_ANY);
    // The answer comes after the grabs are in place.
    std::free(xcb_get_input_focus_reply(server, xcb_get_input_focus(server), nullptr));
}

void XRecorder::read() {
    while (const X11Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
        const unsigned type = event->response_type & 0x7FU;
        const auto& input = reinterpret_cast<const xcb_key_press_event_t&>(*event);
        if (type == XCB_KEY_PRESS || type == XCB_KEY_RELEASE) {
            events_.push_back({.isDown = type == XCB_KEY_PRESS,
                               .what = keysymOf(input.detail),
                               .modifiers = input.state,
                               .x = input.root_x,
                               .y = input.root_y});
        } else if (type == XCB_BUTTON_PRESS || type == XCB_BUTTON_RELEASE) {
            events_.push_back({.isDown = type == XCB_BUTTON_PRESS,
                               .what = input.detail,
                               .modifiers = input.state,
                               .x = input.root_x,
                               .y = input.root_y});
        }
    }
}

std::uint32_t XRecorder::keysymOf(std::uint8_t keycode) {
    return CoreMap(connection_).at(keycode);
}

std::vector<std::string> XRecorder::take() {
    std::vector<std::string> texts;
    for (const Event& event : std::exchange(events_, {})) {
        std::array<char, 64> name{};
        if (event.what <= 5) {
            std::snprintf(name.data(), name.size(), "button%u", event.what);
        } else {
            xkb_keysym_get_name(event.what, name.data(), name.size());
        }
        texts.push_back((event.isDown ? "+" : "-") + std::string(name.data()));
    }
    return texts;
}

} // namespace velloway::test
