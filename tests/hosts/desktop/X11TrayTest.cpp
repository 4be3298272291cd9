#include "desktop/WaitFor.h"
#include "hosts/linux/desktop/LinuxStatusItem.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

namespace velloway::test {
namespace {

/// A tray of the older kind: the owner of a selection, which icons ask to dock them.
class X11Tray {
public:
    X11Tray() : connection_(xcb_connect(nullptr, nullptr)), opcode_(atom("_NET_SYSTEM_TRAY_OPCODE")) {
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
        window_ = xcb_generate_id(connection_);
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen->root, 0, 0, 32, 32, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(connection_, window_, atom("_NET_SYSTEM_TRAY_S0"), XCB_CURRENT_TIME);
        xcb_flush(connection_);
    }
    ~X11Tray() { xcb_disconnect(connection_); }
    X11Tray(const X11Tray&) = delete;
    X11Tray& operator=(const X11Tray&) = delete;

    bool isAskedToDock() {
        constexpr std::uint32_t requestDock = 0;
        while (const auto event = std::unique_ptr<xcb_generic_event_t, decltype(&std::free)>(
                   xcb_poll_for_event(connection_), &std::free)) {
            if ((event->response_type & 0x7f) == XCB_CLIENT_MESSAGE) {
                const auto* message = reinterpret_cast<const xcb_client_message_event_t*>(event.get());
                isAsked_ = isAsked_ || (message->type == opcode_ && message->data.data32[1] == requestDock &&
                                        message->data.data32[2] != XCB_NONE);
            }
        }
        return isAsked_;
    }

private:
    xcb_atom_t atom(std::string_view name) {
        const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
            xcb_intern_atom_reply(
                connection_,
                xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr),
            &std::free);
        return reply->atom;
    }

    xcb_connection_t* connection_;
    xcb_atom_t opcode_;
    xcb_window_t window_ = XCB_NONE;
    bool isAsked_ = false;
};

// One case in a process of its own: Qt decides once for which kind of tray it makes icons.
TEST(X11TrayTest, TheItemDocksInAnX11TrayWhenNoneCameOnTheBus) {
    LinuxStatusItem item(50);
    item.create();
    item.setImage({.kind = StatusImage::Kind::asset, .name = "StatusIcon"});
    item.setMenu({{.title = "Quit", .action = MenuItem::Action::terminate}});
    auto tray = std::make_unique<X11Tray>();
    EXPECT_FALSE(item.isReachable());
    EXPECT_TRUE(waitFor([&] { return tray->isAskedToDock(); }));
    EXPECT_TRUE(item.isReachable());
    tray.reset();
    EXPECT_TRUE(waitFor([&] { return !item.isReachable(); }));
}

} // namespace
} // namespace velloway::test
