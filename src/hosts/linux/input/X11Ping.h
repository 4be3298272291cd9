#pragma once

#include "hosts/linux/input/X11Connection.h"

#include <chrono>
#include <cstdint>
#include <functional>

namespace velloway {

/// Asks the program that has the keyboard to answer once it has come to the question. Programs read their
/// events in order, so by then it has read every key typed before. For the thread of the connection.
class X11Ping {
public:
    /// The connection must outlive this object.
    explicit X11Ping(X11Connection& connection);

    /// Waits for the answer, and returns whether it came, but no longer than `timeout` or, asked now and then,
    /// `isWorthWaiting`; and not at all when nobody has the keyboard or the program takes no such questions.
    /// Drops events that wait on the connection.
    bool await(std::chrono::milliseconds timeout, const std::function<bool()>& isWorthWaiting);

private:
    using Clock = std::chrono::steady_clock;

    xcb_atom_t atom(const char* name);
    bool takesPings(xcb_window_t window);
    xcb_window_t askedWindow();
    void listenAtRoot(bool listens);
    void send(xcb_window_t window);
    bool isAnswer(const xcb_generic_event_t& event, xcb_window_t window) const;
    bool hasAnswered(xcb_window_t window);

    X11Connection& connection_;
    xcb_atom_t protocols_ = XCB_NONE;
    xcb_atom_t ping_ = XCB_NONE;
    /// Stands where others put the time of a user's action; the answer repeats it.
    std::uint32_t serial_ = 0;
};

} // namespace velloway
