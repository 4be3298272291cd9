#pragma once

#include "platform/InputEvents.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velloway {

/// A key in terms of the desktop, with the modifiers that are held around it.
struct KeyStroke {
    std::uint32_t keysym = 0;
    std::vector<std::uint32_t> modifiers;
};

/// One way of injecting input into a Linux desktop. Nothing here waits for the user or for other programs.
///
/// Keys come on the server queue and the pointer on the main queue; each of the two keeps its order.
class InputBackend {
public:
    virtual ~InputBackend() = default;

    /// Whether input posted now would arrive. Any thread; costs nothing.
    virtual bool isReady() const = 0;
    /// Asks the user where the desktop has such a question, unless it is being asked already. Any thread.
    virtual void requestAccess() = 0;

    /// Down presses the modifiers and then the key; up releases them the other way round.
    virtual void postKey(KeyStroke stroke, bool isDown) = 0;
    /// Types a text, given in UTF-16.
    virtual void postText(std::u16string text) = 0;

    /// Where the pointer is, with the fraction that earlier moves left over.
    virtual std::optional<Point> pointerPosition() = 0;
    virtual void movePointer(Point to) = 0;
    virtual void postButton(MouseButton button, bool isDown) = 0;
};

enum class InputSession { x11, wayland, none };

/// The kind of the session that this process runs in. A Wayland session offers an X server too, through which
/// input would reach only some windows; it counts as Wayland all the same.
InputSession currentInputSession();

/// The way for this session. Main thread, after the QCoreApplication.
std::unique_ptr<InputBackend> makeInputBackend();

} // namespace velloway
