#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace velloway {

/// The desktop's general pasteboard, plain text only. Main thread only.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;

    /// Must come before a write.
    virtual void clearContents() = 0;
    /// UTF-8. False when the desktop did not take the text.
    virtual bool setString(std::string_view text) = 0;
    /// Calls `done` once with the text, inside the call or later on the main thread; absent when what lies on
    /// the pasteboard has no plain-text form, or cannot be read. Answers keep the order of the calls. One that
    /// is open when the pasteboard ends is dropped.
    virtual void readString(std::function<void(std::optional<std::string>)> done) = 0;
    /// The same for the text that is selected in any window, on desktops where the middle button of the mouse
    /// pastes it; elsewhere there is none.
    virtual void readSelection(std::function<void(std::optional<std::string>)> done) {
        const auto answer = std::move(done);
        answer(std::nullopt);
    }
    /// False while the desktop keeps what lies on the pasteboard from this program.
    virtual bool isReadable() const { return true; }
};

} // namespace velloway
