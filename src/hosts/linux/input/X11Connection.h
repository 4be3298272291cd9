#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace velloway {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};
/// An answer of the X server; null when there was none.
template <class Reply> using X11Reply = std::unique_ptr<Reply, FreeDeleter>;

/// One connection to the X server of the session. A server that goes away or refuses something never ends the
/// process: the connection is broken from then on, and everything sent is lost. For one thread at a time.
class X11Connection {
public:
    X11Connection();
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    xcb_connection_t* get() const { return connection_; }
    xcb_window_t root() const { return root_; }
    /// Whether the server is there and takes synthetic input.
    bool isUsable() const;

    /// A key or button press or release, or a motion to a point of `window`; not yet flushed.
    void fakeInput(std::uint8_t type, std::uint8_t detail, xcb_window_t window = XCB_NONE, std::int16_t x = 0,
                   std::int16_t y = 0);
    void flush() { xcb_flush(connection_); }
    /// Whether a program has claimed this key on the whole desktop, with any modifiers or with none.
    bool isKeyGrabbed(std::uint8_t keycode);
    /// Waits until the server has done all that was asked of it.
    void sync();
    /// Discards events that nobody reads, so that they do not pile up.
    void discardEvents();

private:
    bool isGrabbedByCoreRequest(std::uint8_t keycode);
    bool isGrabbedByInputExtension(std::uint8_t keycode);

    xcb_connection_t* connection_;
    xcb_window_t root_ = XCB_NONE;
    bool hasTestExtension_ = false;
};

} // namespace velloway
