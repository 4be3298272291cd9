#pragma once

#include "platform/Accessibility.h"
#include "platform/InputEvents.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <string_view>

namespace velloway {

/// Input into this desktop together with the permission for it, which one session of the desktop answers for.
/// An X server with its test extension gives it to everybody, a Wayland desktop once the user has agreed. Input
/// without it is dropped.
class LinuxInput : public InputEvents, public Accessibility {
public:
    /// Whether `isTrustedWithPrompt` would ask the user now. Main thread.
    virtual bool canAsk() { return false; }
};

/// What input needs from its host.
struct InputNeeds {
    /// The file that remembers what the user has permitted; without one, nothing is remembered.
    std::filesystem::path settings = {};
    /// Receives one line about input that this session does not take. Any thread.
    std::function<void(std::string_view)> warn = [](std::string_view) {};
    /// Does what a media key is for when no program of the desktop has claimed it, and calls `done` once with
    /// whether anything took it; otherwise the program with the keyboard gets the key. Any thread, both.
    using MediaKeyDone = std::function<void(bool isDone)>;
    std::function<void(MediaKey, MediaKeyDone done)> pressUnclaimed = [](MediaKey, const MediaKeyDone& done) {
        done(false);
    };
};

} // namespace velloway
