#pragma once

#include "hosts/linux/input/X11Connection.h"
#include "hosts/linux/input/X11Keymap.h"
#include "hosts/linux/input/X11Ping.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <thread>
#include <vector>

namespace velloway {

/// The keyboard of an X server. Keys and texts are typed in the order of the calls, on a thread of its own:
/// after a change of the keymap other programs need a moment, and the caller must not wait for it.
///
/// Characters that the layout lacks are typed with unused keys on loan. They are given back after a while
/// without typing, when more characters are needed than there are keys, and at the end, each time once the
/// program that has the keyboard has read its keys; one that can't be asked gets a fixed time. Destruction
/// waits only for what is left of that time, and drops what is still to be typed then.
class X11Keyboard {
public:
    X11Keyboard();
    ~X11Keyboard();

    bool isUsable() const { return isUsable_; }
    /// Presses the keys one after the other and releases them the other way round.
    void press(std::vector<std::uint32_t> keysyms);
    /// Presses a key if a program has claimed it for the whole desktop, whatever has the keyboard; calls
    /// `otherwise` if none has, on a thread of this object.
    void pressIfClaimed(std::uint32_t keysym, std::function<void()> otherwise);
    /// Types one key after the other, with whatever each of them needs.
    void type(std::vector<std::uint32_t> keysyms);

private:
    using Clock = std::chrono::steady_clock;
    using Job = std::function<void()>;

    void post(Job job);
    void run();
    void giveBackOnceRead();
    void awaitReading();
    bool isEnding();

    void sendTogether(std::span<const std::uint32_t> keysyms);
    void sendInTurn(std::span<const std::uint32_t> keysyms);
    void sendWithLoans(std::span<const std::uint32_t> keysyms);
    std::vector<std::uint32_t> missingIn(std::span<const std::uint32_t> keysyms) const;
    bool borrow(std::span<const std::uint32_t> keysyms);
    std::optional<X11KeyPress> find(std::uint32_t keysym) const;
    bool isClaimed(std::uint32_t keysym);
    std::optional<std::uint8_t> keycodeOf(std::uint32_t keysym);
    void fake(std::uint8_t keycode, bool isDown);
    void tap(X11KeyPress key);

    X11Connection connection_;
    X11Keymap keymap_{connection_};
    X11Ping ping_{connection_};
    const bool isUsable_;
    Clock::time_point lastTyped_;

    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Job> jobs_;
    bool isEnding_ = false;
    std::thread thread_;
};

} // namespace velloway
