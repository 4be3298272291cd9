#include "hosts/linux/windows/WindowSpaces.h"

#include <QAbstractNativeEventFilter>
#include <QEvent>
#include <QGuiApplication>
#include <QTimer>
#include <QVariant>
#include <QWindow>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include <xcb/xcb.h>

namespace velloway {

namespace {

constexpr std::uint32_t everyDesktop = 0xffffffff;

xcb_connection_t* connection() {
    const auto* x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t atom(const char* name) {
    const auto cookie = xcb_intern_atom(connection(), 0, static_cast<std::uint16_t>(std::strlen(name)), name);
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection(), cookie, nullptr), &std::free);
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

xcb_window_t idOf(const QWindow& window) {
    return static_cast<xcb_window_t>(window.winId());
}

void setProperty(const QWindow& window, const char* name, xcb_atom_t type, std::uint32_t value) {
    xcb_change_property(connection(), XCB_PROP_MODE_REPLACE, idOf(window), atom(name), type, 32, 1, &value);
}

xcb_window_t root() {
    return xcb_setup_roots_iterator(xcb_get_setup(connection())).data->root;
}

/// The number of a desktop that a property holds.
std::optional<std::uint32_t> desktopIn(xcb_window_t window, const char* property) {
    const auto cookie = xcb_get_property(connection(), 0, window, atom(property), XCB_ATOM_CARDINAL, 0, 1);
    const std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)> reply(
        xcb_get_property_reply(connection(), cookie, nullptr), &std::free);
    if (!reply || xcb_get_property_value_length(reply.get()) != sizeof(std::uint32_t)) {
        return std::nullopt;
    }
    std::uint32_t number = 0;
    std::memcpy(&number, xcb_get_property_value(reply.get()), sizeof number);
    return number;
}

/// Asks the window manager to do something with a window.
void ask(const QWindow& window, const char* what, const std::uint32_t (&data)[5]) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = idOf(window);
    message.type = atom(what);
    std::memcpy(message.data.data32, data, sizeof data);
    xcb_send_event(connection(), 0, root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(connection());
}

void setType(const QWindow& window, const char* type) {
    setProperty(window, "_NET_WM_WINDOW_TYPE", XCB_ATOM_ATOM, atom(type));
}

using Property = std::unique_ptr<xcb_get_property_reply_t, decltype(&std::free)>;

Property readProperty(xcb_window_t window, const char* name) {
    constexpr std::uint32_t most = 64;
    return {xcb_get_property_reply(
                connection(),
                xcb_get_property(connection(), 0, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, most),
                nullptr),
            &std::free};
}

/// Whether a compositor of the wlroots family stands behind the X server. It shows managed windows under one
/// that fills the screen, and gives the keyboard to unmanaged ones by their type: when they come up, and on a
/// click.
bool isWlroots() {
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection())).data->root;
    const Property check = readProperty(root, "_NET_SUPPORTING_WM_CHECK");
    if (!check || xcb_get_property_value_length(check.get()) < int{sizeof(xcb_window_t)}) {
        return false;
    }
    const Property name =
        readProperty(*static_cast<const xcb_window_t*>(xcb_get_property_value(check.get())), "_NET_WM_NAME");
    return name && std::string_view(static_cast<const char*>(xcb_get_property_value(name.get())),
                                    static_cast<std::size_t>(xcb_get_property_value_length(name.get()))) ==
                       "wlroots wm";
}

/// Brings a window back up that no window manager looks after, whenever the manager has put another window
/// above it. Dies with the window.
class StayingOnTop : public QObject, public QAbstractNativeEventFilter {
public:
    explicit StayingOnTop(QWindow& window)
        : QObject(&window),
          window_(window),
          stacking_(atom("_NET_CLIENT_LIST_STACKING")),
          active_(atom("_NET_ACTIVE_WINDOW")) {
        // A manager may tell of a change before it makes it.
        later_.setSingleShot(true);
        later_.setInterval(100);
        connect(&later_, &QTimer::timeout, this, [this] {
            window_.raise();
            // The toolkit would keep the request until the next event of the X server.
            xcb_flush(connection());
        });
        qApp->installNativeEventFilter(this);
    }

    bool nativeEventFilter(const QByteArray& kind, void* message, qintptr* /*result*/) override {
        const auto* event = static_cast<const xcb_property_notify_event_t*>(message);
        if (kind == "xcb_generic_event_t" && (event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY &&
            (event->atom == stacking_ || event->atom == active_) && window_.isVisible()) {
            window_.raise();
            later_.start();
        }
        return false;
    }

private:
    QWindow& window_;
    xcb_atom_t stacking_;
    xcb_atom_t active_;
    QTimer later_;
};

/// Asks the window manager for every desktop, which some of them hear only about a window that is shown.
class BeingEverywhere : public QObject {
public:
    explicit BeingEverywhere(QWindow& window) : QObject(&window), window_(window) {
        window.installEventFilter(this);
    }

    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        if (event->type() == QEvent::Expose && window_.isExposed() && !isAsked_) {
            isAsked_ = true;
            constexpr std::uint32_t add = 1;
            constexpr std::uint32_t fromAProgram = 1;
            ask(window_, "_NET_WM_STATE", {add, atom("_NET_WM_STATE_STICKY"), 0, fromAProgram, 0});
            ask(window_, "_NET_WM_DESKTOP", {everyDesktop, fromAProgram, 0, 0, 0});
        } else if (event->type() == QEvent::Hide) {
            isAsked_ = false;
        }
        return false;
    }

private:
    QWindow& window_;
    bool isAsked_ = false;
};

/// Gives an unmanaged window the keyboard of a compositor of the wlroots family. That family keeps the X
/// server's own focus where it was, so the window holds the X keyboard by a grab, until a managed window
/// becomes active.
class KeyboardByGrab : public QObject, public QAbstractNativeEventFilter {
public:
    enum class From { start, click };

    KeyboardByGrab(QWindow& window, From from)
        : QObject(&window), window_(window), from_(from), active_(atom("_NET_ACTIVE_WINDOW")) {
        setType(window, from == From::start ? takesKeyboard : leavesKeyboard);
        window.installEventFilter(this);
        qApp->installNativeEventFilter(this);
    }

    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        switch (event->type()) {
        case QEvent::Expose:
            if (from_ == From::start) {
                window_.setKeyboardGrabEnabled(true);
            }
            break;
        case QEvent::Enter:
            // Such windows have the keyboard when they come up, too; this one came up as something else.
            setType(window_, takesKeyboard);
            break;
        case QEvent::MouseButtonPress:
            window_.setKeyboardGrabEnabled(true);
            break;
        case QEvent::Hide:
            window_.setKeyboardGrabEnabled(false);
            if (from_ == From::click) {
                setType(window_, leavesKeyboard);
            }
            break;
        default:
            break;
        }
        return false;
    }

    bool nativeEventFilter(const QByteArray& kind, void* message, qintptr* /*result*/) override {
        const auto* event = static_cast<const xcb_property_notify_event_t*>(message);
        if (kind == "xcb_generic_event_t" && (event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY &&
            event->atom == active_) {
            const Property active = readProperty(event->window, "_NET_ACTIVE_WINDOW");
            if (active && xcb_get_property_value_length(active.get()) >= int{sizeof(xcb_window_t)} &&
                *static_cast<const xcb_window_t*>(xcb_get_property_value(active.get())) != XCB_WINDOW_NONE) {
                window_.setKeyboardGrabEnabled(false);
            }
        }
        return false;
    }

private:
    static constexpr const char* takesKeyboard = "_NET_WM_WINDOW_TYPE_DIALOG";
    static constexpr const char* leavesKeyboard = "_NET_WM_WINDOW_TYPE_NOTIFICATION";

    QWindow& window_;
    From from_;
    xcb_atom_t active_;
};

/// Shows the window anew as one that the window manager looks after. Behind other Wayland compositors, no other
/// window of the X server gets the keyboard, not even by a click.
void giveToManager(QWindow& window) {
    window.hide();
    window.setFlag(Qt::BypassWindowManagerHint, false);
    setType(window, "_NET_WM_WINDOW_TYPE_DIALOG");
    window.show();
    activateForUser(window);
}

bool isUnmanagedOnWayland(const QWindow& window) {
    return connection() && (window.flags() & Qt::BypassWindowManagerHint) &&
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") && !isWlroots();
}

bool hasKeyboardByGrab(const QWindow& window) {
    const QObjectList& children = window.children();
    return std::any_of(children.begin(), children.end(), [](const QObject* each) {
        return dynamic_cast<const KeyboardByGrab*>(each) != nullptr;
    });
}

} // namespace

void floatOverEverything(QWindow& window) {
    if (!connection()) {
        return; // Other window systems leave this to the user.
    }
    // No type or state of a window is above full-screen windows, on every desktop and out of the taskbar with
    // every window manager. A window that is none of the manager's business is.
    window.setFlag(Qt::BypassWindowManagerHint);
    // For compositing managers, which draw shadows and animations by it.
    setType(window, "_NET_WM_WINDOW_TYPE_NOTIFICATION");
    new StayingOnTop(window);
}

void acceptKeyboardOnClick(QWindow& window) {
    if (connection() && isWlroots()) {
        new KeyboardByGrab(window, KeyboardByGrab::From::click);
    }
}

void joinAllSpaces(QWindow& window) {
    if (!connection()) {
        return;
    }
    if (isWlroots()) {
        window.setFlag(Qt::BypassWindowManagerHint);
        new KeyboardByGrab(window, KeyboardByGrab::From::start);
        return;
    }
    setProperty(window, "_NET_WM_DESKTOP", XCB_ATOM_CARDINAL, everyDesktop);
    new BeingEverywhere(window);
}

void requestKeyboard(QWindow& window) {
    if (isUnmanagedOnWayland(window)) {
        // Once the click is over that asked for it.
        QTimer::singleShot(0, &window, [&window] { giveToManager(window); });
    } else if (!hasKeyboardByGrab(window)) {
        window.requestActivate();
    }
}

void activateForUser(QWindow& window) {
    requestKeyboard(window);
    if (connection()) {
        constexpr std::uint32_t fromTheUser = 2;
        ask(window, "_NET_ACTIVE_WINDOW", {fromTheUser, XCB_CURRENT_TIME, 0, 0, 0});
    }
}

void bringToUser(QWindow& window) {
    constexpr const char* broughtProperty = "wasBroughtToUser";
    bool wasBrought = window.property(broughtProperty).toBool();
    if (connection()) {
        // Some managers only mark a window of another desktop when they are asked to activate it.
        const auto own = desktopIn(idOf(window), "_NET_WM_DESKTOP");
        const auto current = desktopIn(root(), "_NET_CURRENT_DESKTOP");
        if (own && current && *own != everyDesktop && *own != *current) {
            constexpr std::uint32_t fromTheUser = 2;
            ask(window, "_NET_WM_DESKTOP", {*current, fromTheUser, 0, 0, 0});
        }
    } else if (std::exchange(wasBrought, true) && !window.isActive() &&
               qEnvironmentVariableIsEmpty("XDG_ACTIVATION_TOKEN")) {
        // A Wayland compositor brings up a window that is there already for a token alone. One that is shown
        // anew comes to the user like any other.
        window.hide();
        window.show();
    }
    window.setProperty(broughtProperty, wasBrought);
    activateForUser(window);
}

bool canSystemMove(const QWindow& window) {
    // A window manager answers for its own windows alone; the others drag themselves.
    return !(window.flags() & Qt::BypassWindowManagerHint);
}

} // namespace velloway
