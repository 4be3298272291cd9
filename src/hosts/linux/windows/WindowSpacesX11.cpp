#include "hosts/linux/windows/WindowSpaces.h"

#include <QGuiApplication>
#include <QWindow>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include <xcb/xcb.h>

namespace velloway {

namespace {

xcb_atom_t atom(xcb_connection_t* connection, const char* name) {
    const auto cookie = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

} // namespace

void joinAllSpaces(QWindow& window) {
    const auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!x11 || !x11->connection()) {
        return; // Other window systems leave this to the user.
    }
    constexpr std::uint32_t everyDesktop = 0xffffffff;
    xcb_change_property(x11->connection(), XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window.winId()),
                        atom(x11->connection(), "_NET_WM_DESKTOP"), XCB_ATOM_CARDINAL, 32, 1, &everyDesktop);
}

} // namespace velloway
