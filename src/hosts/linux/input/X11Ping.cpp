#include "hosts/linux/input/X11Ping.h"

#include <algorithm>
#include <cstring>
#include <poll.h>

namespace velloway {

namespace {

constexpr std::uint32_t mostProtocols = 64;
/// How often it is asked whether the wait is still worth it.
constexpr int sliceMilliseconds = 50;

} // namespace

X11Ping::X11Ping(X11Connection& connection) : connection_(connection) {
    if (connection_.isUsable()) {
        protocols_ = atom("WM_PROTOCOLS");
        ping_ = atom("_NET_WM_PING");
    }
}

bool X11Ping::await(std::chrono::milliseconds timeout, const std::function<bool()>& isWorthWaiting) {
    const auto end = Clock::now() + timeout;
    const xcb_window_t window = askedWindow();
    if (window == XCB_NONE) {
        return false;
    }
    listenAtRoot(true);
    send(window);
    bool answered = false;
    while (!(answered = hasAnswered(window)) && Clock::now() < end && isWorthWaiting() &&
           xcb_connection_has_error(connection_.get()) == 0) {
        pollfd waiting{.fd = xcb_get_file_descriptor(connection_.get()), .events = POLLIN, .revents = 0};
        ::poll(&waiting, 1, sliceMilliseconds);
    }
    listenAtRoot(false);
    return answered;
}

xcb_atom_t X11Ping::atom(const char* name) {
    xcb_connection_t* server = connection_.get();
    const X11Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
        server, xcb_intern_atom(server, 0, static_cast<std::uint16_t>(std::strlen(name)), name), nullptr));
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_NONE);
}

bool X11Ping::takesPings(xcb_window_t window) {
    xcb_connection_t* server = connection_.get();
    const X11Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
        server, xcb_get_property(server, 0, window, protocols_, XCB_ATOM_ATOM, 0, mostProtocols), nullptr));
    if (!reply || reply->format != 32) {
        return false;
    }
    const auto* atoms = static_cast<const xcb_atom_t*>(xcb_get_property_value(reply.get()));
    return std::find(atoms, atoms + reply->value_len, ping_) != atoms + reply->value_len;
}

/// The window with the keyboard, or the first around it that takes the question.
xcb_window_t X11Ping::askedWindow() {
    xcb_connection_t* server = connection_.get();
    const X11Reply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(server, xcb_get_input_focus(server), nullptr));
    xcb_window_t window = focus ? focus->focus : static_cast<xcb_window_t>(XCB_NONE);
    while (window > XCB_INPUT_FOCUS_POINTER_ROOT && window != connection_.root()) {
        if (takesPings(window)) {
            return window;
        }
        const X11Reply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(server, xcb_query_tree(server, window), nullptr));
        window = tree ? tree->parent : static_cast<xcb_window_t>(XCB_NONE);
    }
    return XCB_NONE;
}

/// Answers go to those who listen at the root window to what happens under it; those of Qt, to those who listen
/// to what happens to itself.
void X11Ping::listenAtRoot(bool listens) {
    constexpr std::uint32_t both = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    const std::uint32_t mask = listens ? both : std::uint32_t{XCB_EVENT_MASK_NO_EVENT};
    xcb_change_window_attributes(connection_.get(), connection_.root(), XCB_CW_EVENT_MASK, &mask);
    connection_.flush();
}

void X11Ping::send(xcb_window_t window) {
    xcb_client_message_event_t question{};
    question.response_type = XCB_CLIENT_MESSAGE;
    question.format = 32;
    question.window = window;
    question.type = protocols_;
    question.data.data32[0] = ping_;
    question.data.data32[1] = ++serial_;
    question.data.data32[2] = window;
    xcb_send_event(connection_.get(), 0, window, XCB_EVENT_MASK_NO_EVENT,
                   reinterpret_cast<const char*>(&question));
    connection_.flush();
}

bool X11Ping::isAnswer(const xcb_generic_event_t& event, xcb_window_t window) const {
    constexpr std::uint8_t sentByAClient = 0x80;
    if ((event.response_type & ~sentByAClient) != XCB_CLIENT_MESSAGE) {
        return false;
    }
    const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
    return message.window == connection_.root() && message.type == protocols_ &&
           message.data.data32[0] == ping_ && message.data.data32[1] == serial_ &&
           message.data.data32[2] == window;
}

bool X11Ping::hasAnswered(xcb_window_t window) {
    while (const X11Reply<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
        if (isAnswer(*event, window)) {
            return true;
        }
    }
    return false;
}

} // namespace velloway
