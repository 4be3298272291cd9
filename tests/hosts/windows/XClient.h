#pragma once

#include <QGuiApplication>
#include <QWindow>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <xcb/xcb.h>

namespace velloway::test {

/// Another client of the X server, in the place of a window manager: it hears what windows ask for.
class XClient {
public:
    struct Message {
        std::string type;
        xcb_window_t window;
        std::vector<std::uint32_t> data;
    };

    XClient() : connection_(xcb_connect(nullptr, nullptr), &xcb_disconnect) {
        root_ = xcb_setup_roots_iterator(xcb_get_setup(get())).data->root;
        const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
        xcb_change_window_attributes(get(), root_, XCB_CW_EVENT_MASK, &mask);
        sync();
    }

    xcb_connection_t* get() const { return connection_.get(); }
    xcb_window_t root() const { return root_; }
    void sync() { std::free(xcb_get_input_focus_reply(get(), xcb_get_input_focus(get()), nullptr)); }

    xcb_atom_t atom(const std::string& name) const {
        const Reply<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(
                get(), xcb_intern_atom(get(), 0, static_cast<std::uint16_t>(name.size()), name.data()),
                nullptr),
            &std::free);
        return reply->atom;
    }
    std::string nameOf(xcb_atom_t atom) const {
        const Reply<xcb_get_atom_name_reply_t> reply(
            xcb_get_atom_name_reply(get(), xcb_get_atom_name(get(), atom), nullptr), &std::free);
        return reply ? std::string(xcb_get_atom_name_name(reply.get()),
                                   static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get())))
                     : "";
    }

    /// The numbers that a property holds.
    std::vector<std::uint32_t> property(xcb_window_t window, const std::string& name) const {
        const Reply<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(
                get(), xcb_get_property(get(), 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, 64),
                nullptr),
            &std::free);
        std::vector<std::uint32_t> values;
        if (reply && reply->format == 32) {
            values.resize(static_cast<std::size_t>(xcb_get_property_value_length(reply.get())) / 4);
            std::memcpy(values.data(), xcb_get_property_value(reply.get()), values.size() * 4);
        }
        return values;
    }
    /// The first name in a property of atoms.
    std::string nameIn(const QWindow& window, const std::string& property) const {
        const auto atoms = this->property(idOf(window), property);
        return atoms.empty() ? "" : nameOf(atoms[0]);
    }
    void setProperty(xcb_window_t window, const std::string& name, xcb_atom_t type, std::uint32_t value) {
        xcb_change_property(get(), XCB_PROP_MODE_REPLACE, window, atom(name), type, 32, 1, &value);
        sync();
    }
    void setText(xcb_window_t window, const std::string& name, const std::string& text) {
        xcb_change_property(get(), XCB_PROP_MODE_REPLACE, window, atom(name), atom("UTF8_STRING"), 8,
                            static_cast<std::uint32_t>(text.size()), text.data());
        sync();
    }
    void deleteProperty(xcb_window_t window, const std::string& name) {
        xcb_delete_property(get(), window, atom(name));
        sync();
    }

    /// A window that no manager looks after.
    xcb_window_t makeWindow(int x, int y, int width, int height) {
        const xcb_window_t window = xcb_generate_id(get());
        const std::uint32_t isUnmanaged = 1;
        xcb_create_window(get(), XCB_COPY_FROM_PARENT, window, root_, static_cast<std::int16_t>(x),
                          static_cast<std::int16_t>(y), static_cast<std::uint16_t>(width),
                          static_cast<std::uint16_t>(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT, &isUnmanaged);
        sync();
        return window;
    }
    void show(xcb_window_t window) {
        const std::uint32_t above = XCB_STACK_MODE_ABOVE;
        xcb_map_window(get(), window);
        xcb_configure_window(get(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
        sync();
    }
    /// Of all windows, also those that others have made.
    xcb_window_t topWindow() const {
        const Reply<xcb_query_tree_reply_t> reply(
            xcb_query_tree_reply(get(), xcb_query_tree(get(), root_), nullptr), &std::free);
        const int count = xcb_query_tree_children_length(reply.get());
        return count > 0 ? xcb_query_tree_children(reply.get())[count - 1] : XCB_NONE;
    }
    bool isKeyboardGrabbed() {
        const Reply<xcb_grab_keyboard_reply_t> reply(
            xcb_grab_keyboard_reply(
                get(),
                xcb_grab_keyboard(get(), 0, root_, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
                nullptr),
            &std::free);
        if (reply && reply->status == XCB_GRAB_STATUS_SUCCESS) {
            xcb_ungrab_keyboard(get(), XCB_CURRENT_TIME);
            sync();
            return false;
        }
        return true;
    }

    /// What has been asked of the window manager since the last call.
    std::vector<Message> takeMessages() {
        sync();
        std::vector<Message> found;
        while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(get()), &std::free}) {
            if ((event->response_type & 0x7F) == XCB_CLIENT_MESSAGE) {
                const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
                found.push_back({nameOf(message.type), message.window,
                                 std::vector<std::uint32_t>(message.data.data32, message.data.data32 + 5)});
            }
        }
        return found;
    }

    static xcb_window_t idOf(const QWindow& window) { return static_cast<xcb_window_t>(window.winId()); }

private:
    template <class T> using Reply = std::unique_ptr<T, decltype(&std::free)>;

    std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection_;
    xcb_window_t root_ = XCB_NONE;
};

/// A compositing manager is there for as long as this is.
class CompositingManager {
public:
    CompositingManager() { own(client_.makeWindow(0, 0, 1, 1)); }
    ~CompositingManager() { own(XCB_NONE); }
    CompositingManager(const CompositingManager&) = delete;
    CompositingManager& operator=(const CompositingManager&) = delete;

private:
    void own(xcb_window_t window) {
        xcb_set_selection_owner(client_.get(), window, client_.atom("_NET_WM_CM_S0"), XCB_CURRENT_TIME);
        client_.sync();
    }

    XClient client_;
};

} // namespace velloway::test
