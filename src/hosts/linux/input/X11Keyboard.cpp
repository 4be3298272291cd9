#include "hosts/linux/input/X11Keyboard.h"

#include <xkbcommon/xkbcommon-keysyms.h>

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace velloway {

namespace {

using namespace std::chrono_literals;

/// For input methods and holders of key grabs, which learn of a new keymap beside the stream of key events.
constexpr auto readingTime = 50ms;
/// So long after the last key its meaning stands for programs that cannot be asked.
constexpr auto catchUpTime = 400ms;
/// So long a busy program is waited for before the keys that it has not read yet lose their meaning.
constexpr auto busyProgramTimeout = 5s;
/// The keys stay on loan this long, so that somebody who types on and on changes the keymap rarely.
constexpr auto loanTime = 2s;

bool isCharacter(std::uint32_t keysym) {
    return keysym < 0xFD00 || keysym > 0xFFFF;
}

char32_t characterOf(std::uint32_t keysym) {
    return keysym & 0x00FFFFFFU;
}

} // namespace

X11Keyboard::X11Keyboard() : isUsable_(keymap_.isUsable()) {
    if (isUsable_) {
        thread_ = std::thread([this] { run(); });
    }
}

X11Keyboard::~X11Keyboard() {
    if (thread_.joinable()) {
        {
            const std::lock_guard lock(mutex_);
            isEnding_ = true;
        }
        wake_.notify_one();
        thread_.join();
    }
}

void X11Keyboard::press(std::vector<std::uint32_t> keysyms) {
    post([this, keysyms = std::move(keysyms)] { sendTogether(keysyms); });
}

void X11Keyboard::pressIfClaimed(std::uint32_t keysym, std::function<void()> otherwise) {
    post([this, keysym, otherwise = std::move(otherwise)] {
        if (isClaimed(keysym)) {
            const std::uint32_t keysyms[] = {keysym};
            sendTogether(keysyms);
        } else {
            otherwise();
        }
    });
}

/// A key that is on no keyboard can't have been claimed.
bool X11Keyboard::isClaimed(std::uint32_t keysym) {
    const auto press = keymap_.find(keysym);
    return press && connection_.isKeyGrabbed(press->keycode);
}

void X11Keyboard::type(std::vector<std::uint32_t> keysyms) {
    post([this, keysyms = std::move(keysyms)] { sendInTurn(keysyms); });
}

void X11Keyboard::post(Job job) {
    if (!isUsable_) {
        return;
    }
    {
        const std::lock_guard lock(mutex_);
        jobs_.push_back(std::move(job));
    }
    wake_.notify_one();
}

void X11Keyboard::run() {
    std::unique_lock lock(mutex_);
    const auto hasWork = [this] { return isEnding_ || !jobs_.empty(); };
    while (!isEnding_) {
        if (!keymap_.isLending()) {
            wake_.wait(lock, hasWork);
        } else if (!wake_.wait_until(lock, lastTyped_ + loanTime, hasWork)) {
            lock.unlock();
            giveBackOnceRead();
            lock.lock();
            continue;
        }
        if (isEnding_) {
            break;
        }
        const Job job = std::move(jobs_.front());
        jobs_.pop_front();
        lock.unlock();
        if (keymap_.refresh()) {
            job();
        }
        connection_.discardEvents();
        lock.lock();
    }
    lock.unlock();
    giveBackOnceRead();
}

void X11Keyboard::giveBackOnceRead() {
    if (keymap_.isLending()) {
        awaitReading();
        keymap_.giveBack();
    }
}

/// Until the program with the keyboard has read what was typed into it.
void X11Keyboard::awaitReading() {
    if (!ping_.await(busyProgramTimeout, [this] { return !isEnding(); })) {
        std::this_thread::sleep_until(lastTyped_ + catchUpTime);
    }
}

bool X11Keyboard::isEnding() {
    const std::lock_guard lock(mutex_);
    return isEnding_;
}

void X11Keyboard::fake(std::uint8_t keycode, bool isDown) {
    connection_.fakeInput(isDown ? XCB_KEY_PRESS : XCB_KEY_RELEASE, keycode);
}

void X11Keyboard::tap(X11KeyPress key) {
    const auto shift = key.isShifted ? keymap_.find(XKB_KEY_Shift_L) : std::nullopt;
    if (shift) {
        fake(shift->keycode, true);
    }
    fake(key.keycode, true);
    fake(key.keycode, false);
    if (shift) {
        fake(shift->keycode, false);
    }
}

/// A modifier that no key can be had for is left out; without the key itself nothing is pressed.
void X11Keyboard::sendTogether(std::span<const std::uint32_t> keysyms) {
    std::vector<std::uint8_t> keycodes;
    for (const std::uint32_t keysym : keysyms) {
        if (const auto keycode = keycodeOf(keysym)) {
            keycodes.push_back(*keycode);
        } else if (keysym == keysyms.back()) {
            return;
        }
    }
    std::for_each(keycodes.begin(), keycodes.end(), [this](std::uint8_t each) { fake(each, true); });
    std::for_each(keycodes.rbegin(), keycodes.rend(), [this](std::uint8_t each) { fake(each, false); });
    connection_.flush();
    lastTyped_ = Clock::now();
}

std::optional<std::uint8_t> X11Keyboard::keycodeOf(std::uint32_t keysym) {
    if (!keymap_.find(keysym)) {
        if (keymap_.available() == 0) {
            giveBackOnceRead();
        }
        const std::uint32_t missing[] = {keysym};
        borrow(missing);
    }
    const auto press = keymap_.find(keysym);
    return press ? std::optional(press->keycode) : std::nullopt;
}

std::optional<X11KeyPress> X11Keyboard::find(std::uint32_t keysym) const {
    return isCharacter(keysym) ? keymap_.findCharacter(characterOf(keysym)) : keymap_.find(keysym);
}

/// Caps Lock is off meanwhile, as it would change what the keys mean. Modifiers that the user holds are let go
/// for the same reason, and not pressed again: were one released while the text is typed, it would stay down
/// for ever.
void X11Keyboard::sendInTurn(std::span<const std::uint32_t> keysyms) {
    const std::vector<std::uint8_t> held = keymap_.heldModifiers();
    std::for_each(held.begin(), held.end(), [this](std::uint8_t each) { fake(each, false); });
    const bool wasCapsLocked = keymap_.isCapsLocked();
    if (wasCapsLocked) {
        keymap_.setCapsLocked(false);
    }
    sendWithLoans(keysyms);
    if (wasCapsLocked) {
        keymap_.setCapsLocked(true);
    }
    connection_.flush();
}

/// Borrows for the whole text at once, or for as much of it as there are unused keys.
void X11Keyboard::sendWithLoans(std::span<const std::uint32_t> keysyms) {
    while (!keysyms.empty()) {
        auto missing = missingIn(keysyms);
        if (missing.size() > keymap_.available() && keymap_.isLending()) {
            awaitReading();
            keymap_.recycle();
            missing = missingIn(keysyms);
        }
        if (!missing.empty() && !borrow(missing)) {
            return;
        }
        const auto end = std::find_if(keysyms.begin(), keysyms.end(),
                                      [this](std::uint32_t keysym) { return !find(keysym); });
        std::for_each(keysyms.begin(), end, [this](std::uint32_t keysym) { tap(*find(keysym)); });
        connection_.flush();
        lastTyped_ = Clock::now();
        keysyms = keysyms.subspan(static_cast<std::size_t>(end - keysyms.begin()));
    }
}

std::vector<std::uint32_t> X11Keyboard::missingIn(std::span<const std::uint32_t> keysyms) const {
    std::vector<std::uint32_t> missing;
    std::unordered_set<std::uint32_t> seen;
    for (const std::uint32_t keysym : keysyms) {
        if (!find(keysym) && seen.insert(keysym).second) {
            missing.push_back(keysym);
        }
    }
    return missing;
}

/// Borrows all of these, or as many as can be had. False when there is no unused key at all.
bool X11Keyboard::borrow(std::span<const std::uint32_t> keysyms) {
    const std::size_t count = std::min(keysyms.size(), keymap_.available());
    if (count == 0) {
        return false;
    }
    keymap_.borrow(keysyms.first(count));
    lastTyped_ = Clock::now();
    std::this_thread::sleep_for(readingTime);
    return true;
}

} // namespace velloway
