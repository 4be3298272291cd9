#pragma once

#include "phone/Loop.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace velloway::phone {

/// The WebSocket to the computer. Dials in again after a break, a little later each time. All callbacks come on
/// the loop.
class Link {
public:
    struct Events {
        std::function<void()> isUp;
        /// `reason` is a text for the user. Comes after each failed attempt too.
        std::function<void(const std::string& reason)> isDown;
        std::function<void(std::string message)> received;
        /// Everything given to `send` has been handed to the system.
        std::function<void()> isDrained;
    };

    struct Habits {
        /// Dials in again after a break.
        bool reconnects = true;
        /// Asks after the computer when nothing has come for a while, and takes silence for a break. Telephones
        /// change networks without closing anything.
        bool pings = false;
    };

    Link(Loop& loop, std::string host, std::uint16_t port, Habits habits, Events events);
    ~Link();

    void dial();

    /// Returns false, and sends nothing, while there is no connection.
    bool send(std::string message, bool isBinary = false);

    bool isUp() const;

    /// Ends the connection as a killed phone does: the system closes the socket, with no close frame.
    void cut();

    /// Sends what is left, says goodbye, then calls `done`. There is no dialling after this.
    void close(std::function<void()> done);

private:
    struct State;
    std::shared_ptr<State> state_;
};

} // namespace velloway::phone
