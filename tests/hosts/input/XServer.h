#pragma once

#include "hosts/linux/input/X11Connection.h"

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

namespace velloway::test {

/// A client of its own that looks at the X server from outside.
class XServer {
public:
    XServer();

    /// Gives the keyboard to a window; false, and nothing happens, while it isn't on the screen.
    bool focus(xcb_window_t window);
    /// Every part of the keymaps of all keyboards, as the server sends them.
    std::vector<std::uint8_t> keymaps();
    /// The keysyms of the core keyboard's first level that lie on some key.
    bool hasKeysym(std::uint32_t keysym);
    void clearKey(std::uint8_t keycode);
    std::vector<std::uint8_t> keycodesOf(std::uint32_t keysym);
    bool isAnyKeyDown();

    struct Position {
        int x = 0;
        int y = 0;
        bool operator==(const Position&) const = default;
        friend void PrintTo(const Position& position, std::ostream* out) {
            *out << position.x << ',' << position.y;
        }
    };
    Position pointer();
    void warpPointer(int x, int y);

    bool isCapsLocked();
    void setCapsLocked(bool isLocked);

    X11Connection& connection() { return connection_; }

private:
    X11Connection connection_;
};

/// Takes every key and button event of the whole display, as a media key service takes its keys.
class XRecorder {
public:
    XRecorder();

    struct Event {
        bool isDown = false;
        /// A keysym, or the number of a button.
        std::uint32_t what = 0;
        unsigned modifiers = 0;
        int x = 0;
        int y = 0;
    };
    /// What came since the last call, as text: "+Left" and "-Left" with the keysyms' names, "+button1".
    std::vector<std::string> take();
    const std::vector<Event>& events() const { return events_; }
    void read();
    void clear() { events_.clear(); }

private:
    std::uint32_t keysymOf(std::uint8_t keycode);

    X11Connection connection_;
    std::vector<Event> events_;
};

} // namespace velloway::test
