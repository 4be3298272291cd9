#include "hosts/linux/desktop/ActivationToken.h"

#include <QGuiApplication>
#include <QTimer>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include <xcb/xcb.h>

namespace velloway {

namespace {

constexpr const char* toolkitToken = "XDG_ACTIVATION_TOKEN";
/// Milliseconds.
constexpr int validity = 5000;

xcb_atom_t atom(xcb_connection_t* connection, std::string_view name) {
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

std::string removeMessage(const std::string& startupId) {
    std::string message = "remove: ID=\"";
    for (const char byte : startupId) {
        if (byte == '"' || byte == '\\') {
            message += '\\';
        }
        message += byte;
    }
    return message + '"';
}

/// Messages of this kind go to everyone who watches the root window, in pieces of twenty bytes up to a null
/// byte.
void broadcast(xcb_connection_t* connection, const std::string& message) {
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const xcb_window_t sender = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, sender, root, -100, -100, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 8;
    event.window = sender;
    event.type = atom(connection, "_NET_STARTUP_INFO_BEGIN");
    const std::size_t size = message.size() + 1;
    for (std::size_t at = 0; at < size; at += sizeof event.data.data8) {
        std::memset(event.data.data8, 0, sizeof event.data.data8);
        std::memcpy(event.data.data8, message.c_str() + at, std::min(sizeof event.data.data8, size - at));
        xcb_send_event(connection, 0, root, XCB_EVENT_MASK_PROPERTY_CHANGE,
                       reinterpret_cast<const char*>(&event));
        event.type = atom(connection, "_NET_STARTUP_INFO");
    }
    xcb_destroy_window(connection, sender);
    xcb_flush(connection);
}

} // namespace

void useActivationToken(const ActivationToken& token) {
    if (!token.wayland.empty()) {
        // Where the toolkit looks for it when it is asked to activate a window.
        ::setenv(toolkitToken, token.wayland.c_str(), 1);
        // What comes later must ask for a token of its own.
        QTimer::singleShot(validity, qGuiApp, [] { ::unsetenv(toolkitToken); });
    }
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 != nullptr && !token.x11.empty()) {
        broadcast(x11->connection(), removeMessage(token.x11));
    }
}

} // namespace velloway
